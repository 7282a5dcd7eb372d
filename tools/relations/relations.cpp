#include <algorithm>

#include "relations/zipwalk.h"

namespace statecut::relations {

namespace {

constexpr const Relation* kAll[] = {&kZip,          &kCity,      &kCityZip,         &kCityPhonetic,
                                    &kStreet,       &kFirm,      &kStreetVariation, &kCounty,
                                    &kUrbanization, &kPartition, &kTables,          &kHeader};

}  // namespace

std::span<const Relation* const> all() { return kAll; }

const Relation* find(std::string_view name) {
  const auto* const at = std::find_if(std::begin(kAll), std::end(kAll),
                                      [&](const Relation* one) { return one->name == name; });
  return at == std::end(kAll) ? nullptr : *at;
}

}  // namespace statecut::relations
