#include <gmock/gmock.h>

#include <filesystem>
#include <fstream>
#ifndef _WIN32
#include <sys/resource.h>
#endif

#include "dump/ReadDump.h"
#include "unit/dump/DumpText.h"

namespace {

using testing::EndsWith;

/// A folder of its own, for files.
class DumpFile : public testing::Test {
 protected:
  DumpFile() { std::filesystem::create_directories(folder_); }
  ~DumpFile() override { std::filesystem::remove_all(folder_); }
  DumpFile(const DumpFile&) = delete;
  DumpFile& operator=(const DumpFile&) = delete;

  [[nodiscard]] std::filesystem::path Write(const std::filesystem::path& name, std::string_view bytes) const {
    std::ofstream(folder_ / name, std::ios::binary) << bytes;
    return folder_ / name;
  }

  static std::string MessageOf(const std::filesystem::path& path) {
    try {
      Dump::ReadDumpFile(path);
    } catch (const Dump::DumpError& error) {
      return error.what();
    }
    return "none";
  }

  const std::filesystem::path folder_ = std::filesystem::path(testing::TempDir()) / "dump_file_test";
};

TEST_F(DumpFile, IsRead) {
  const Dump::EngineState state = Dump::ReadDumpFile(Write("a.xml", kFilters));
  EXPECT_EQ(state.filters.size(), 1U);
}

TEST_F(DumpFile, MayHaveANameBeyondAscii) {
  const std::filesystem::path name = u8"\u00fcbersicht \u4e00.xml";
  EXPECT_EQ(Dump::ReadDumpFile(Write(name, kFilters)).filters.size(), 1U);
  EXPECT_THAT(MessageOf(Write(name, "<a>")), EndsWith("\xC3\xBC"
                                                      "bersicht \xE4\xB8\x80.xml:1: expected </a>, since "
                                                      "line 1 opens it, but the file ends"));
}

TEST_F(DumpFile, IsMissing) { EXPECT_THAT(MessageOf(folder_ / "no.xml"), EndsWith("no.xml: no such file")); }

TEST_F(DumpFile, IsAFolder) {
  EXPECT_THAT(MessageOf(folder_), EndsWith("dump_file_test: expected a file, found a folder or a device"));
}

TEST_F(DumpFile, IsEmpty) {
  EXPECT_THAT(
      MessageOf(Write("empty.xml", "")),
      EndsWith("empty.xml: expected <wfpstate> or <wfpdiag>, as netsh wfp show state and netsh wfp show "
               "filters write them, found nothing"));
}

TEST_F(DumpFile, IsTooLarge) {
  const std::filesystem::path path = Write("large.xml", kFilters);
  std::filesystem::resize_file(path, 64 * 1024 * 1024 + 1);
  EXPECT_THAT(MessageOf(path), EndsWith("large.xml: expected a dump of at most 64 MB"));
}

#ifndef _WIN32
TEST_F(DumpFile, IsNotReadIfItIsTooLarge) {
  const std::filesystem::path path = Write("sparse.xml", kFilters);
  std::filesystem::resize_file(path, std::uintmax_t{1} << 36);
  EXPECT_THAT(MessageOf(path), EndsWith("sparse.xml: expected a dump of at most 64 MB"));
}

TEST_F(DumpFile, CannotBeOpened) {
  const std::filesystem::path path = Write("closed.xml", kFilters);
  rlimit limit{};
  getrlimit(RLIMIT_NOFILE, &limit);
  const rlimit none{0, limit.rlim_max};
  setrlimit(RLIMIT_NOFILE, &none);
  const std::string message = MessageOf(path);
  setrlimit(RLIMIT_NOFILE, &limit);
  EXPECT_THAT(message, EndsWith("closed.xml: cannot be opened; expected the right to read it"));
}
#endif

}  // namespace
