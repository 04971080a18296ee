/**
 * @file
 * Which filters match a connection, written independently of policy/ and as simply as possible.
 */
#pragma once

#include <WfpPlatform.h>

#include <map>
#include <string>
#include <vector>

#include "policy/Connection.h"
#include "policy/Verdict.h"

/// A filter's native record with its id and effective weight, which the engine gives.
struct NaiveFilter {
  explicit NaiveFilter(const FWPM_FILTER0& native);

  const FWPM_FILTER0* record;
  UINT64 id = 0;
  UINT64 effectiveWeight = 0;
  std::map<std::string, std::vector<const FWPM_FILTER_CONDITION0*>> fields;
};

enum Matching { No, Perhaps, Yes };

struct NaiveCircumstances;

Matching Matches(const NaiveFilter& filter, const Policy::Connection& connection,
                 const NaiveCircumstances& circumstances, Policy::World world);

/// Whether the world has the second reading of an assumption.
inline bool Second(Policy::World world, Policy::Assumption assumption) {
  return world.ReadingOf(assumption) == 1;
}
