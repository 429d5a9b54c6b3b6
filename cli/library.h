// The library that velmo is built on, as a whole.
#ifndef VELMO_CLI_LIBRARY_H
#define VELMO_CLI_LIBRARY_H

namespace velmo::cli {

// To be called before the library's first use: it reads its environment only then.
// timeout_ms: the longest time until a server has answered, 0 for what the settings say.
void prepare_library(unsigned int timeout_ms);

} // namespace velmo::cli

#endif
