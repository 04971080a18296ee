#pragma once

#include <string>
#include <vector>

#include "AskedCircumstances.h"
#include "Failure.h"
#include "policy/Owners.h"
#include "promises/Proof.h"

/// The data that a page shows.
struct PageContent {
  Engine engine;
  const Policy::Snapshot& snapshot;
  const std::vector<Promises::PromiseResult>& promises;
  const Policy::Labels& labels;
  const Policy::Owners& owners;
  bool isOrderInferred = false;  ///< that of the sublayers
  AskedCircumstances asked{};    ///< for whom and where the page answers
};

/// A page that shows what an engine lets through: one HTML file that loads no other file. It holds the
/// filters and their exact map as data, and a script that looks up connections in them.
std::string MakePage(const PageContent& content);
