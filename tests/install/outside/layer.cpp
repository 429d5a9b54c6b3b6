// A program in C++ of another project, on the layer of headers: it links what C does.
#include <chrono>
#include <iostream>

#include <velmo/velmo.hpp>

int main()
{
    velmo::Ports ports;
    ports.create("outside", 7).value();
    ports.send(7, "hello").value();
    std::cout << ports.receive(7, std::chrono::seconds(1)).value().text() << '\n';
}
