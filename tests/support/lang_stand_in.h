// The table of texts, for tests of what asks it. A program that contains
// lang_stand_in.cpp has that VelmoLang instead of the library's.
#ifndef VELMO_TESTS_SUPPORT_LANG_STAND_IN_H
#define VELMO_TESTS_SUPPORT_LANG_STAND_IN_H

#include <string>

namespace velmo::tests {

// The text that the stand-in has for a key: "text of KEY".
std::wstring stand_in_text(const std::string& key);

// From now on (until the next call) the table lacks this key, "" for none, and
// answers with another text.
void take_text_away(const std::string& key);
std::wstring stand_in_text_for_missing(const std::string& key);

} // namespace velmo::tests

#endif
