// City names: by key, by exact, truncated and wildcard name.

#include "query/ops.h"

namespace statecut::query {

namespace {

const ProcObj& members(Session& session) { return *session.proc(); }

void cityUsps(Session& session, const Args& args, Answer& answer) {
  answer.record("record", members(session).pfnGetCityUSPS(args[0].asSigned()));
}

void cityUspsWc(Session& session, const Args& args, Answer& answer) {
  answer.record("record", members(session).pfnGetCityUSPSwc(args[0].asSigned()));
}

void cityNameIdx(Session& session, const Args& args, Answer& answer) {
  answer.number("result", members(session).pfnFindCityNameIdx(args[0].text.data(), args[0].length(),
                                                              session.proc()));
}

void cityHash(Session& session, const Args& args, Answer& answer) {
  answer.number("result", members(session).pfnFindCityIndex(args[0].text.data(),
                                                            args[1].text.data(), args[1].length()));
}

void city(Session&, const Args& args, Answer& answer) {
  answer.record("record", dbFindCity(args[0].text.data(), args[1].text.data(), args[1].length()));
}

void truncCity(Session&, const Args& args, Answer& answer) {
  answer.record("record",
                dbFindTruncCity(args[0].text.data(), args[1].text.data(), args[1].length()));
}

void truncCityIndex(Session& session, const Args& args, Answer& answer) {
  answer.number("result", members(session).pfnFindTruncCityIndex(
                              args[0].text.data(), args[1].text.data(), args[1].length()));
}

void seqSearch(Session& session, const Args& args, Answer& answer) {
  answer.number("result",
                members(session).pfnSeqSearchCity(args[0].text.data(), args[1].text.c_str(),
                                                  args[2].matcher, args[3].asSigned()));
}

void nearestCity(Session&, const Args& args, Answer& answer) {
  answer.number("result", dbFindNearestCity(args[0].text.data(), args[1].text.c_str()));
}

void nextCity(Session&, const Args& args, Answer& answer) {
  answer.number("result",
                dbFindNextCity(args[0].text.data(), args[1].text.c_str(), args[2].asSigned()));
}

constexpr Parameter kKey[] = {{"KEY", ArgKind::kNumber}};
constexpr Parameter kHashKey[] = {{"STATE+NAME", ArgKind::kText}};
constexpr Parameter kName[] = {{"STATE", ArgKind::kState}, {"NAME", ArgKind::kText}};
constexpr Parameter kSearch[] = {{"STATE", ArgKind::kState},
                                 {"TEXT", ArgKind::kPattern},
                                 {"MATCHER", ArgKind::kMatcher},
                                 {"START", ArgKind::kNumber}};
constexpr Parameter kPattern[] = {{"STATE", ArgKind::kState}, {"PATTERN", ArgKind::kPattern}};
constexpr Parameter kPatternFrom[] = {
    {"STATE", ArgKind::kState}, {"PATTERN", ArgKind::kPattern}, {"START", ArgKind::kNumber}};

constexpr std::uint32_t kHashed = kCityNameSet | kHashSet;

constexpr Op kOps[] = {{"dbGetCityUSPS", kKey, "record", kCityNameSet, cityUsps},
                       {"dbGetCityUSPSwc", kKey, "record", kCityNameSet, cityUspsWc},
                       {"dbFindCityNameIdx", kHashKey, "result", kHashed, cityNameIdx},
                       {"dbFindCityHash", kName, "result", kHashed, cityHash},
                       {"dbFindCity", kName, "record", kHashed, city},
                       {"dbFindTruncCity", kName, "record", kCityNameSet, truncCity},
                       {"dbFindTruncCityIndex", kName, "result", kCityNameSet, truncCityIndex},
                       {"seqSearchCity", kSearch, "result", kCityNameSet, seqSearch},
                       {"dbFindNearestCity", kPattern, "result", kCityNameSet, nearestCity},
                       {"dbFindNextCity", kPatternFrom, "result", kCityNameSet, nextCity}};

}  // namespace

std::span<const Op> cityNameOps() { return kOps; }

}  // namespace statecut::query
