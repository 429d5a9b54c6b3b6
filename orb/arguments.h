#ifndef VELMO_ORB_ARGUMENTS_H
#define VELMO_ORB_ARGUMENTS_H

#include <string>
#include <utility>
#include <vector>

namespace velmo::orb {

// An argument vector for ORB_init(), which reorders and shortens it.
class Arguments {
public:
    explicit Arguments(std::vector<std::string> options) : strings(std::move(options))
    {
        strings.insert(strings.begin(), "velmo");
        for (std::string& string : strings)
            pointers.push_back(string.data());
        pointers.push_back(nullptr);
        count = static_cast<int>(strings.size());
    }

    char** values() { return pointers.data(); }

    int count;

private:
    std::vector<std::string> strings;
    std::vector<char*> pointers;
};

} // namespace velmo::orb

#endif
