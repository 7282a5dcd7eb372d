// Reads standard input to its end; status 0 when it is one JSON document, else 1.

#include <iostream>
#include <nlohmann/json.hpp>

int main() { return nlohmann::json::accept(std::cin) ? 0 : 1; }
