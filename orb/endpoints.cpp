// Addresses. The one of a reference is read out of its string: "IOR:" and, in hexadecimal,
// a CDR encapsulation of the type id and the tagged profiles (CORBA 3.0, 13.6 and
// 15.7.2). Brokers have accessors of their own for this; the format is common.
#include <cstring>
#include <string_view>

#include "orb/server.h"

namespace velmo::orb {

namespace {

using Bytes = std::vector<unsigned char>;

[[noreturn]] void malformed()
{
    throw std::runtime_error("the reference has no internet address");
}

unsigned hex_digit(char c)
{
    const char* digits = "0123456789abcdef";
    const char* found = std::strchr(digits, c >= 'A' && c <= 'F' ? c - 'A' + 'a' : c);
    if (!found || !*found)
        malformed();
    return static_cast<unsigned>(found - digits);
}

Bytes decode(std::string_view ior)
{
    if (ior.substr(0, 4) != "IOR:" || ior.size() % 2 != 0)
        malformed();
    Bytes bytes;
    for (std::size_t i = 4; i < ior.size(); i += 2)
        bytes.push_back(
            static_cast<unsigned char>(hex_digit(ior[i]) << 4 | hex_digit(ior[i + 1])));
    return bytes;
}

// A CDR encapsulation: its first byte is the byte order, and numbers are aligned
// to their size, counted from there.
class Encapsulation {
public:
    explicit Encapsulation(Bytes content) : bytes(std::move(content))
    {
        little_endian = take(1)[0] & 1;
    }

    std::uint32_t number(std::size_t size)
    {
        position = (position + size - 1) / size * size;
        const unsigned char* digits = take(size);
        std::uint32_t value = 0;
        for (std::size_t i = 0; i < size; ++i)
            value = value << 8 | digits[little_endian ? size - 1 - i : i];
        return value;
    }

    Bytes octets()
    {
        const std::size_t length = number(4);
        const unsigned char* first = take(length);
        return Bytes(first, first + length);
    }

    void skip(std::size_t size) { take(size); }

private:
    const unsigned char* take(std::size_t size)
    {
        if (size > bytes.size() - position)
            malformed();
        const unsigned char* first = bytes.data() + position;
        position += size;
        return first;
    }

    Bytes bytes;
    std::size_t position = 0;
    bool little_endian = false;
};

constexpr std::uint32_t internet_profile = 0; // IOP::TAG_INTERNET_IOP

} // namespace

std::string url_host(const std::string& host)
{
    const bool numeric_v6 = host.find(':') != std::string::npos && host.front() != '[';
    return numeric_v6 ? "[" + host + "]" : host;
}

Endpoint published_endpoint(CORBA::ORB_ptr orb, CORBA::Object_ptr object)
{
    CORBA::String_var ior = orb->object_to_string(object);
    Encapsulation reference(decode(ior.in()));
    reference.octets(); // type id
    for (std::uint32_t left = reference.number(4); left > 0; --left) {
        const std::uint32_t tag = reference.number(4);
        Bytes content = reference.octets();
        if (tag != internet_profile)
            continue;
        Encapsulation profile(std::move(content));
        profile.skip(2); // IIOP version
        const Bytes host = profile.octets();
        Endpoint endpoint;
        endpoint.host.assign(host.begin(), host.end());
        endpoint.host.resize(std::strlen(endpoint.host.c_str())); // it ends in NUL
        endpoint.port = static_cast<std::uint16_t>(profile.number(2));
        return endpoint;
    }
    malformed();
}

} // namespace velmo::orb
