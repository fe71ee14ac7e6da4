// The contact search under the recipient rules. The contact cache puts its search here when it starts; until
// one is set, no text finds a contact.
#pragma once

#include <string>
#include <vector>

namespace zcmod {

using RecipientSearchFunction = int (*)(std::wstring& text, bool byName, std::vector<std::wstring>& results);

void SetRecipientSearch(RecipientSearchFunction search);
RecipientSearchFunction GetRecipientSearch();

}  // namespace zcmod
