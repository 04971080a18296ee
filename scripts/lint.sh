#!/bin/bash
# Fails if the layout of a source differs from that of clang-format or Prettier, a folder includes a file that it must
# not see, a workflow of .github/ has a mistake, or clang-tidy has a warning for the product's sources. With --all,
# clang-tidy also checks the tests, reads each source by itself and runs clang's static analyzer, which takes many times
# as long.
set -eu
cd "$(dirname "$0")/.."
linted='src|catalog|emulator|policy|promises|dump|replay|watch|calibrate|tools'
checks=-clang-analyzer-*
together=ON
if [ "${1:-}" = --all ]; then
  linted+='|tests'
  checks=
  together=OFF
fi

mapfile -t sources < <(git ls-files --cached --others --exclude-standard '*.h' '*.c' '*.cpp')

echo "Layout: ${#sources[@]} files"
[ ${#sources[@]} -gt 0 ]
clang-format --dry-run --Werror "${sources[@]}"
(cd tests/page && npm ci --loglevel=error --no-audit --no-fund && npm run --silent check-layout)

echo "What clang-tidy has no check for"
refuse() { # refuse PATTERN ADVICE
  if grep -nP "$1" "${sources[@]}"; then
    echo "$2" >&2
    exit 1
  fi
}
refuse 'template <.*\btypename\b' 'Write "class" for a type that a template takes.'
refuse '\?(?:[^()?,;]|(\((?:[^()]++|(?1))*+\)))* : (?:[^()?,;]|(?1))*\? |^ *: .*\? ' \
  'Write "if" around a conditional operator, not a second one inside it.'

echo "Folders see only what they may"
forbid() { # forbid FOLDER... -- PATTERN
  local folders=()
  while [ "$1" != -- ]; do folders+=("$1"); shift; done
  if grep -rnE "#include \"($2)" "${folders[@]}"; then
    echo "These includes cross a border; docs and CMakeLists.txt say who may see whom." >&2
    exit 1
  fi
}
forbid src/filtering -- '(sublayers|helpers|api)/|engine/(Engine|Firewall|Provider|Sublayer)\.h'
forbid src/engine -- '(sublayers|helpers|api)/'
forbid src/sublayers -- 'helpers/|api/[^R]' # the rule sets' identities are in api/RuleSetIdentity.h
forbid src/helpers -- '(engine|sublayers|api)/'
forbid src include -- '(catalog|emulator|policy|promises|dump|replay|watch|calibrate|tools|tests)/'
forbid catalog emulator sdk_subset policy promises dump replay watch calibrate -- '(filtering|engine|sublayers|helpers|api|corvane|src)/'
forbid catalog emulator sdk_subset -- '(policy|promises|dump|replay|watch|calibrate)/'
forbid policy -- '(promises|emulator|dump|replay|watch|calibrate|tools|tests)/'
forbid promises -- '(emulator|dump|replay|watch|calibrate|tools|tests)/'
forbid dump -- '(emulator|policy|promises|replay|watch|calibrate|tools|tests)/'
forbid watch -- '(emulator|promises|dump|replay|calibrate|tools|tests)/'
forbid calibrate -- '(promises|emulator|dump|replay|watch|tools|tests)/'
forbid replay -- '(policy|promises|watch|calibrate|tools|tests)/|emulator/([^C]|ControlExports)' # of the emulator only its control
forbid tools -- '(filtering|engine|sublayers|api|tests)/|emulator/([^C]|Control\.h)' # of the emulator only its exports

# The floors of policy/, from the lowest; docs/architecture.md draws them. No file includes one of a higher floor.
floors=(
  'ShowProgress|Ascii|ByteReader|Sha|Sid|Truths|Token|SecurityDescriptor|AceCondition|AccessCheck'
  'Assumptions|Number|Address|Connection|Test|Value|EngineCalls|Snapshot|Decode|ModelledField|Circumstances|DerivedTests|FilterTests|Certainty|NamedInSnapshot|Owners|PrincipalText|ConditionText'
  'BitWords|State|ValueClass|ValueText|FieldTable|NumberTable|FlagsTable|ApplicationTable|MakeFieldTable'
  'Verdict|Arbitration|Mark|Section'
  'MapNode|Pruner|Diagram'
  'Map|MapText|Decide|Explain|Summary|Finding|Lint|LintBehaviour|LintText'
)
above=
for ((i = ${#floors[@]} - 1; i >= 0; i--)); do
  mapfile -t floor < <(find policy -regextype egrep -regex "policy/(${floors[i]})\.(h|cpp)")
  [ -z "$above" ] || forbid "${floor[@]}" -- "policy/($above)\.h"
  above+="${above:+|}${floors[i]}"
done
if find policy -name '*.h' -o -name '*.cpp' | grep -vE "^policy/($above)\."; then
  echo "These files of policy/ have no floor yet: name them in scripts/lint.sh." >&2
  exit 1
fi

echo "Workflows"
(cd tests/workflows && npm ci --loglevel=error --no-audit --no-fund && npm run --silent check)

echo "clang-tidy"
# In a build tree of its own, where only the header with the tool's page is built.
cmake --preset windows -B build/lint -DCORVANE_LINT=ON -DCMAKE_UNITY_BUILD="$together" >/dev/null
cmake --build build/lint --target report_template_header >/dev/null
includes=$(x86_64-w64-mingw32-g++-posix -print-file-name=include)
# clang does not find the cross-compiler's own headers by itself.
run-clang-tidy -quiet -p build/lint -j "$(nproc)" -checks="$checks" \
  -extra-arg=--target=x86_64-w64-mingw32 \
  -extra-arg=-isystem"$includes/c++" \
  -extra-arg=-isystem"$includes/c++/x86_64-w64-mingw32" \
  -extra-arg=-Wno-unknown-warning-option \
  "^$PWD/(build/lint/)?($linted)/" > build/clang-tidy.log 2>&1 || {
  grep -E 'warning:|error:|note:' build/clang-tidy.log | sort -u >&2
  exit 1
}
