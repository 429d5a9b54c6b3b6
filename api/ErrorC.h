// Names and texts of the result codes.
#ifndef VELMO_API_ERRORC_H
#define VELMO_API_ERRORC_H

#include <map>
#include <string>

class ErrorC {
public:
    static constexpr const wchar_t* unknown_error = L"UNKNOWN_ERROR";

    ErrorC();
    virtual ~ErrorC();

    // The process's table; null only when there is no memory for it.
    static ErrorC* instance();

    // The text of a code in the user's language, the fallback for an unknown one.
    const wchar_t* text(int code) const;

private:
    std::map<int, std::string> names;
    std::wstring fallback;
};

#endif
