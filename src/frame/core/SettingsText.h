// Text rules of the readers of the machine's surroundings: build numbers, Bluetooth stack versions and the
// path of the platform's fault reporter.
#pragma once

#include <cstddef>
#include <string>

namespace zcmod {

// Converts a decimal integer the way the C runtime's _wtoi does: leading blanks, an optional sign, digits up
// to the first other character; 0 when there are none; clamped to the int range.
int ParseLeadingInt(const wchar_t* text);

// Splits a build number such as "7.2.1045" on dots (empty parts are skipped, as wcstok does) and converts up
// to three leading parts. Parts not present are 0. Returns the number of parts converted.
int ParseBuildNumberParts(const wchar_t* text, int result[3]);

// Finds `word` in `text`, both upper-cased, then the first digit behind it; the number runs on over digits,
// "." and "," and ends at the first other character. False when the word or a digit is missing.
bool TakeNumberAfterWord(const wchar_t* text, const wchar_t* word, std::wstring& number);

// Splits a WidComm version text: the run of digits that ends the text is the build; before it, characters
// that are not digits are dropped and the run of digits and dots before those is the version.
// "5.1.0.1100" gives version "5.1.0" and build "1100".
void SplitTrailingVersion(const wchar_t* text, std::wstring& version, std::wstring& build);

// True when `text`, upper-cased, contains each of the `count` upper-case words.
bool ContainsAllWords(const wchar_t* text, const wchar_t* const* words, std::size_t count);

// Builds windowsDir + "\System32\FaultRep.dll" into `out`. Fails (false, `out` empty) when the folder's name
// is empty or longer than 237 characters, so that the whole path always fits in 260 characters.
bool BuildFaultReporterPath(const wchar_t* windowsDir, std::size_t dirLen, wchar_t* out, std::size_t outCapacity);

// Copies `text` into `out` when it fits with its terminator; otherwise leaves `out` untouched.
bool CopyIfFits(const std::wstring& text, wchar_t* out, std::size_t capacity);

}  // namespace zcmod
