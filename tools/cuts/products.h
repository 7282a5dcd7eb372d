#pragma once
// The products that a run makes: a name, which becomes a folder, and its states.

#include <string>
#include <vector>

namespace statecut::cuts {

struct Product {
  std::string name;
  std::vector<std::string> states;  // upper-case, as named: not sorted, maybe one twice
};

// A list of products, and what is wrong with it, a line each.
struct ProductList {
  std::vector<Product> products;
  std::vector<std::string> problems;
};

// "NAME=TX,OK", each.
ProductList parseProducts(const std::vector<std::string>& words);

// Lines "NAME: TX OK"; blank lines and what follows a '#' say nothing.
ProductList readProducts(const std::string& path);

// One product for each abbreviation that statecut knows.
ProductList everyState();

}  // namespace statecut::cuts
