// The table of texts in the user's language.
#ifndef VELMO_VELMOLANG_H
#define VELMO_VELMOLANG_H

#include "vl_export.h"

// Looks texts up by key. The language is chosen once, at the first use: by
// VELMO_LANG ("de", "en", ...), else by the locale (LC_ALL, LC_MESSAGES, LANG);
// English stands in where a language or one of its texts is missing. The texts are
// read from the files share/velmo/lang/LANGUAGE.xml of the library's installation;
// what is wrong with them is logged.
class VL_EXPORT VelmoLang {
public:
    // The process's table; never null.
    static VelmoLang* GetInstance();

    // The text of a key; the key itself when no language has it, "" for null.
    // Never null; the same pointer each time, valid until the process ends, not to
    // be freed. Each key that no language has takes memory until then: keys are to
    // be names, not data. Safe from any thread; never throws.
    const wchar_t* GetString(const char* key);
};

#endif
