// Classes and sub types of the fields of a contact, as the content access interface and the versit converter
// of the connectivity service number them. Plain numbers, without <windows.h>, so that portable code can
// use them too.
#pragma once

// Classes.
#define CA_FIELD_CLASS_ANY 0  // in a search condition: a field of any class
#define CA_FIELD_CLASS_PERSONAL 1
#define CA_FIELD_CLASS_NUMBER 2
#define CA_FIELD_CLASS_ADDRESS 3

// In a search condition, sub type 0 matches any sub type of the class.
#define CA_FIELD_SUBTYPE_ANY 0

// Personal information. A contact whose card has no structured name has its formatted name alone.
#define CA_PERSONAL_NAME 0x001        // the formatted name, when no name part is known
#define CA_PERSONAL_FIRST_NAME 0x002  // given name
#define CA_PERSONAL_LAST_NAME 0x004   // family name
#define CA_PERSONAL_MIDDLE_NAME 0x008
#define CA_PERSONAL_TITLE 0x010  // honorific prefix
#define CA_PERSONAL_SUFFIX 0x020
#define CA_PERSONAL_NICKNAME 0x040
#define CA_PERSONAL_COMPANY 0x080
#define CA_PERSONAL_JOB_TITLE 0x100
#define CA_PERSONAL_BIRTHDAY 0x200
#define CA_PERSONAL_NOTE 0x400

// Numbers.
#define CA_NUMBER_GENERAL 0x001
#define CA_NUMBER_HOME 0x002
#define CA_NUMBER_WORK 0x003
#define CA_NUMBER_MOBILE 0x004
#define CA_NUMBER_FAX 0x005
#define CA_NUMBER_PAGER 0x006
#define CA_NUMBER_CAR 0x007

// Addresses: e-mail (0x103 to 0x105), postal (one line, parts joined by ", "), web.
#define CA_ADDRESS_EMAIL 0x103
#define CA_ADDRESS_EMAIL_HOME 0x104
#define CA_ADDRESS_EMAIL_WORK 0x105
#define CA_ADDRESS_POSTAL 0x201
#define CA_ADDRESS_POSTAL_HOME 0x202
#define CA_ADDRESS_POSTAL_WORK 0x203
#define CA_ADDRESS_URL 0x301
