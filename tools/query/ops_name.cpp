// Streets and firms.

#include "query/lists.h"
#include "query/ops.h"

namespace statecut::query {

namespace {

const ProcObj& members(Session& session) { return *session.proc(); }

void streetKey(Session& session, const Args& args, Answer& answer) {
  answer.number("result", members(session).pfnFindStreetKey(args[0].text.data(), args[0].length(),
                                                            session.proc()));
}

void nameAt(GetName* get, Session& session, const Args& args, Answer& answer) {
  std::int32_t length = kNoLength;
  const char* name = get(args[0].number, &length, session.proc());
  writeName(answer, name, length);
}

void streetName(Session& session, const Args& args, Answer& answer) {
  nameAt(members(session).pfnGetStreetNameUSPS, session, args, answer);
}

void streetNameWc(Session& session, const Args& args, Answer& answer) {
  nameAt(members(session).pfnGetStreetNameUSPSwc, session, args, answer);
}

void streetVarIdx(Session& session, const Args& args, Answer& answer) {
  answer.number("result", members(session).pfnFindStreetVarIdx(args[0].number, args[1].text.data(),
                                                               args[1].length(), session.proc()));
}

void streetVar(Session& session, const Args& args, Answer& answer) {
  // A call that stores this flag adds a key as well.
  constexpr std::int8_t kUntouched = 1;
  std::int8_t flag = kUntouched;
  std::int32_t count = 0;
  const std::vector<std::uint16_t>& scfKeys = args[2].keys;
  const std::uint32_t* keys = members(session).pfnFindStreetVar(
      args[0].text.data(), args[0].length(), scfKeys.data(),
      static_cast<std::int32_t>(scfKeys.size()), args[1].asSigned(), &flag, &count);
  if (keys == nullptr)
    answer.null("keys");
  else
    answer.numbers<std::uint32_t>("keys", {keys, static_cast<std::size_t>(count)});
  if (flag == kUntouched && count == 0)
    answer.null("flag");
  else
    answer.number("flag", flag);
  answer.number("count", count);
}

void firm(Session& session, const Args& args, Answer& answer) {
  answer.number("result", members(session).pfnFindFirm(args[0].text.data(), args[0].length(),
                                                       session.proc()));
}

void firmName(Session& session, const Args& args, Answer& answer) {
  nameAt(members(session).pfnGetFirmName, session, args, answer);
}

constexpr Parameter kName[] = {{"NAME", ArgKind::kText}};
constexpr Parameter kOffset[] = {{"OFFSET", ArgKind::kNumber}};
constexpr Parameter kVarName[] = {{"TABLE", ArgKind::kTable}, {"NAME", ArgKind::kText}};
constexpr Parameter kVariation[] = {
    {"NAME", ArgKind::kText}, {"KIND", ArgKind::kNumber}, {"SCFS", ArgKind::kScfKeys}};

constexpr std::uint32_t kVariationSets = kStreetPhoneticSet | kStreetStandardSet | kHashSet;

constexpr Op kOps[] = {
    {"dbFindStreetKey", kName, "result", kStreetNameSet | kHashSet, streetKey},
    {"dbGetStreetNameUSPS", kOffset, "name, length", kStreetNameSet, streetName},
    {"dbGetStreetNameUSPSwc", kOffset, "name, length", kStreetNameSet, streetNameWc},
    {"dbFindStreetVarIdx", kVarName, "result", kVariationSets, streetVarIdx},
    {"dbFindStreetVar", kVariation, "keys, flag, count", kVariationSets, streetVar},
    {"dbFindFirm", kName, "result", kFirmSet | kHashSet, firm},
    {"dbGetFirmName", kOffset, "name, length", kFirmSet, firmName}};

}  // namespace

std::span<const Op> nameOps() { return kOps; }

}  // namespace statecut::query
