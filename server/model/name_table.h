// Many names, in little more memory than their bytes.
#ifndef VELMO_SERVER_MODEL_NAME_TABLE_H
#define VELMO_SERVER_MODEL_NAME_TABLE_H

#include <memory>
#include <string_view>
#include <vector>

namespace velmo::model {

// Names without a NUL in them, each followed by one. One thread uses it.
class NameTable {
public:
    using const_iterator = std::vector<const char*>::const_iterator;

    // Expects so many names in all.
    void reserve(std::size_t count) { names.reserve(count); }

    void add(std::string_view name);

    // In byte order.
    void sort();

    std::size_t size() const { return names.size(); }
    bool empty() const { return names.empty(); }
    const char* const* data() const { return names.data(); }
    const_iterator begin() const { return names.begin(); }
    const_iterator end() const { return names.end(); }

private:
    std::vector<const char*> names; // in the blocks
    std::vector<std::unique_ptr<char[]>> blocks;
    char* next = nullptr; // free in the last block
    std::size_t room = 0; // from there
};

} // namespace velmo::model

#endif
