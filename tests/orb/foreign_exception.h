// An exception that is not the broker's, raised inside a remote call.
#ifndef VELMO_TESTS_ORB_FOREIGN_EXCEPTION_H
#define VELMO_TESTS_ORB_FOREIGN_EXCEPTION_H

#include <string>

namespace velmo::tests {

// While this object lives, calls of the operation that go to another process end in
// a std::runtime_error that comes out of the broker. A servant cannot raise one: it
// arrives as a CORBA exception. One object at a time.
class ForeignException {
public:
    explicit ForeignException(const std::string& operation);
    ~ForeignException();
    ForeignException(const ForeignException&) = delete;
    ForeignException& operator=(const ForeignException&) = delete;
};

} // namespace velmo::tests

#endif
