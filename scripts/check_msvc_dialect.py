"""Checks the sources of a build tree of the preset msvc-dialect; scripts/check-msvc-dialect.sh calls it.

Prints what clang says of sources that fail, then "N checked, M failed". A warning is a failure.
"""
import json
import os
import pathlib
import subprocess
import sys
from concurrent.futures import ThreadPoolExecutor

# Reading these once instead of in each source saves a third of the time.
USUAL_HEADERS = ["WfpPlatform.h", "algorithm", "functional", "map", "memory", "optional", "span", "string", "vector"]
TOOL_HEADERS = ["CLI/CLI.hpp", "nlohmann/json.hpp"]
TEST_HEADERS = ["gmock/gmock.h"]

# Visual Studio makes every member of an exported class, also those that nobody calls: exported, this class has to fail,
# and otherwise to pass.
MEMBER = "{ std::vector<std::unique_ptr<int>> notToBeCopied; };\n"
PLANTED = "#include <memory>\n#include <vector>\nclass %s Planted " + MEMBER


def check(command, folder, source, *options):
    """Lets clang read a source by the command that compiles another or the same. Gives the errors, or None."""
    compiler = command.split(" /Fo", 1)[0]
    result = subprocess.run(f'{compiler} {" ".join(options)} -- "{source}"', shell=True, cwd=folder, text=True,
                            stdout=subprocess.PIPE, stderr=subprocess.STDOUT)
    return result.stdout or f"exit code {result.returncode}" if result.returncode != 0 else None


def main():
    build = pathlib.Path(sys.argv[1]).resolve()
    root = pathlib.Path(__file__).resolve().parent.parent
    commands = json.loads((build / "compile_commands.json").read_text())

    # The library's sources are checked as parts of the DLL, where classes are exported, not of the static libraries.
    def is_checked(entry):
        in_static_library = entry["file"].startswith(f"{root}/src/") and "-DWFPFIREWALL_STATIC" in entry["command"]
        is_ours = "googletest/" not in entry["file"] and not entry["file"].endswith(".rc")
        return is_ours and not in_static_library

    commands = [entry for entry in commands if is_checked(entry)]

    def first(part):
        return next(entry for entry in commands if part in entry["command"])

    def precompile(entry, name, headers):
        source = build / f"{name}.cpp"
        source.write_text("".join(f"#include <{header}>\n" for header in headers))
        precompiled = build / f"{name}.pch"
        errors = check(entry["command"], entry["directory"], source, f"-c -Xclang -emit-pch /Fo{precompiled}")
        if errors is not None:
            sys.exit(errors)
        return f"-Xclang -include-pch -Xclang {precompiled}"

    # Most tests are compiled with this macro of GoogleTest's, and headers are not the same with it.
    macro = "-DGTEST_HAS_PTHREAD"
    without_macro = precompile(first("/tool_tests.dir/"), "usual_headers", USUAL_HEADERS + TOOL_HEADERS + TEST_HEADERS)
    with_macro = precompile(first("/emulator_tests.dir/"), "test_headers", USUAL_HEADERS + TEST_HEADERS)

    # Not where classes are exported or imported: with a precompiled header clang does not make all their members.
    def run(entry, source):
        options = ["/Zs"]
        shares_classes = entry["file"].startswith((f"{root}/src/", f"{build}/tests/package/"))
        if "-std:c++" in entry["command"] and not shares_classes:
            options.append(with_macro if macro in entry["command"] else without_macro)
        return source, check(entry["command"], entry["directory"], source, *options)

    for exported, expected in (("__declspec(dllexport)", True), ("", False)):
        planted = build / "planted.cpp"
        planted.write_text(PLANTED % exported)
        _, errors = run(first("-DWFPFIREWALL_BUILDING"), planted)
        if (errors is not None and "unique_ptr" in errors) != expected:
            sys.exit(f"A class with a member that cannot be copied {exported}: {errors or 'no error'}")

    failed = 0
    with ThreadPoolExecutor(os.cpu_count()) as pool:
        for source, errors in pool.map(run, commands, [entry["file"] for entry in commands]):
            if errors is not None:
                failed += 1
                print(f"{os.path.relpath(source, root)}\n{errors}", flush=True)
    print(f"{len(commands)} checked, {failed} failed")
    sys.exit(1 if failed else 0)


main()
