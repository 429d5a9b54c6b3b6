// Who makes a call that may wait.
#ifndef VELMO_SERVER_MODEL_CALLER_H
#define VELMO_SERVER_MODEL_CALLER_H

namespace velmo::model {

class Caller {
public:
    virtual ~Caller() = default;

    // Whether it is known that nobody is there any more to take the answer. Asked by
    // any thread while the call lasts, with locks held: it must not block. Once true,
    // it stays so.
    virtual bool gone() const = 0;
};

// A caller that never goes: one within this process.
inline const Caller& resident_caller()
{
    class Resident final : public Caller {
        bool gone() const override { return false; }
    };
    static const Resident resident;
    return resident;
}

} // namespace velmo::model

#endif
