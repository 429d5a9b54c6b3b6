// The text of a settings file before it is parsed.
#ifndef VELMO_UTIL_SETTINGS_TEXT_H
#define VELMO_UTIL_SETTINGS_TEXT_H

#include <cstddef>
#include <string>

namespace velmo::settings {

// Tells the line, from 1, of an offset in a text; quick when asked in the text's
// order. Offsets outside the text count as its ends.
class Lines {
public:
    explicit Lines(const std::string& of_text) : text(of_text) {}
    int at(std::ptrdiff_t wanted);

private:
    const std::string& text;
    std::ptrdiff_t offset = 0;
    int line = 1;
};

// Throws Fault for what the XML parser lets pass although it would cut or garble
// a name: NUL, bytes that are not UTF-8, references to characters that are none.
void check_characters(const std::string& text, Lines& lines);

} // namespace velmo::settings

#endif
