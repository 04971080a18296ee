/**
 * @file
 * What conditions on who connects and where make of a connection, written independently of policy/ and as
 * simply as possible.
 */
#pragma once

#include <WfpPlatform.h>

#include <optional>
#include <set>
#include <string>

#include "policy/Circumstances.h"
#include "policy/Connection.h"
#include "unit/policy/NaiveMatching.h"

/// Somebody, by the SIDs that count for him; and the same as a token.
struct NaivePerson {
  Policy::Token token;
  std::set<std::string> groups;
  std::set<std::string> ofPackage;  ///< what counts in the second pass of an app container; empty for others
  std::string package;
  std::string family;  ///< empty for a program that is not packaged
};

inline constexpr std::size_t kNaivePeople = 6;
const NaivePerson& PersonOf(std::size_t index);

struct NaiveCircumstances {
  const NaivePerson* person = nullptr;
  std::optional<UINT32> profile;
  UINT32 tunnelType = 0;
  UINT32 compartment = 1;
  std::optional<UINT64> epoch;  ///< none: quarantine is over
  UINT32 systemPort = 0;
  UINT32 reauthorizeReason = 0;

  [[nodiscard]] Policy::Circumstances ToCircumstances() const;
};

/// Whether a condition holds; none if its field is not one of circumstances.
std::optional<Matching> Ask(const std::string& field, const FWPM_FILTER_CONDITION0& condition,
                            const Policy::Connection& connection, const NaiveCircumstances& circumstances);
