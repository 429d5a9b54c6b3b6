// Exceptions that calls may end in, but operations do not declare.
#ifndef VELMO_TESTS_ORB_FOREIGN_EXCEPTION_H
#define VELMO_TESTS_ORB_FOREIGN_EXCEPTION_H

#include <string>

namespace velmo::tests {

// An exception that is not the broker's, raised inside a remote call. While this object
// lives, calls of the operation that go to another process end in a std::runtime_error that
// comes out of the broker. A servant cannot raise one: it arrives as a CORBA exception. One
// object at a time.
class ForeignException {
public:
    explicit ForeignException(const std::string& operation);
    ~ForeignException();
    ForeignException(const ForeignException&) = delete;
    ForeignException& operator=(const ForeignException&) = delete;
};

// Whether a user exception that the operation does not declare reaches callers of the same
// process as it is. Elsewhere it arrives as UNKNOWN.
bool undeclared_exceptions_pass();

} // namespace velmo::tests

#endif
