/**
 * @file
 * Reading what "netsh wfp show state" and "netsh wfp show filters" write.
 */
#pragma once

#include <filesystem>
#include <string>

#include "dump/DumpError.h"
#include "dump/EngineState.h"

namespace Dump {

/// Reads a dump: UTF-8, with or without its mark, or UTF-16 with its mark. Elements that it does not know are
/// skipped and counted. Time and memory are bounded by a small multiple of the size.
/// @param fileName for errors.
/// @throws DumpError if anything is wrong; nothing is half-read.
EngineState ReadDump(std::string bytes, const std::string& fileName);

/// Reads a file of at most 64 MB.
/// @throws DumpError, also if there is no such file or no right to read it.
EngineState ReadDumpFile(const std::filesystem::path& path);

}  // namespace Dump
