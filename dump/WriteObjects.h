/**
 * @file
 * The objects of a dump, each as an item of its list.
 */
#pragma once

#include "dump/DumpWriter.h"

namespace Dump {

void Write(DumpWriter& writer, const FWPM_PROVIDER0& provider);
void Write(DumpWriter& writer, const FWPM_PROVIDER_CONTEXT0& context);
void Write(DumpWriter& writer, const FWPM_SUBLAYER0& subLayer);
void Write(DumpWriter& writer, const FWPM_CALLOUT0& callout);
/// @throws DumpError, which names the filter, if it has what a dump cannot say.
void Write(DumpWriter& writer, const FWPM_FILTER0& filter);
/// A layer by itself, without its callouts and filters.
void WriteLayer(DumpWriter& writer, const FWPM_LAYER0& layer);

}  // namespace Dump
