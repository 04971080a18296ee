#pragma once

#include <string>
#include <vector>

#include "Failure.h"
#include "promises/Proof.h"

/// What a page is about.
struct PageContent {
  Engine engine;
  const Policy::Snapshot& snapshot;
  const std::vector<Promises::PromiseResult>& promises;
  const Policy::Labels& labels;
};

/// A page that shows what an engine lets through: one HTML file, which loads nothing. It holds the filters
/// and their exact map as data, and a script that looks connections up in them.
std::string MakePage(const PageContent& content);
