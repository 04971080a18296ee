/*
 * Causes every failure that docs/failures.md lists, on the emulated engine, and writes the tables of that
 * page from what it observes. Without an argument it prints them; with the path of the page it compares.
 */
#include <corvane/native_firewall.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include "Rows.h"
#include "emulator/ControlExports.h"

enum { PlannedCode = 5, Words = 120, LongestCell = 200, LongestLine = 1200, MostLines = 200 };

static const char kBegin[] = "<!-- Written by tests/failures. -->\n";
static const char kEnd[] = "<!-- Up to here. -->\n";

/* The expected tables, line by line. */
static char lines[MostLines][LongestLine];
static size_t lineCount;

static char* NextLine(void) {
  if (lineCount == MostLines) {
    fputs("The tables have more lines than this program has room for.\n", stderr);
    exit(2);
  }
  return lines[lineCount++];
}

typedef struct Run {
  const Table* table;
  const Row* row;
  const Feature* feature;
} Run;

static uint64_t DoSame(Run run) {
  return run.table->installs ? run.feature->install() : run.feature->remove();
}

static uint64_t DoOpposite(Run run) {
  return run.table->installs ? run.feature->remove() : run.feature->install();
}

typedef void (*LeaveText)(void);

static void LeaveTextOfMissingApp(void) { DisableInternetForMissingApp(); }

static void LeaveTextOfSession(void) {
  EngineEmulatorFailCall("FwpmEngineOpen0", 1, PlannedCode);
  kDhcp.install();
  kDhcp.remove();
}

/* Starts afresh and does everything up to the failure. Gives the result of the command that fails. */
static uint64_t Fail(Run run, LeaveText leaveText) {
  StartAfresh();
  leaveText();
  EngineEmulatorSetRule("failedCommitEndsTransaction", !run.row->commitKeepsTransaction);
  if (run.table->before == InstalledWithoutCopy) {
    EngineEmulatorFailCall("FwpmEngineOpen0", 1, PlannedCode);
  }
  if (run.table->before != NothingInstalled) {
    run.feature->installFirst();
  }
  RememberOldRules();
  const Fault faults[] = {run.row->fault, run.row->secondFault};
  for (size_t i = 0; i < 2 && faults[i].function != NULL; ++i) {
    EngineEmulatorFailCall(faults[i].function, faults[i].nth, PlannedCode);
  }
  return run.row->command != NULL ? run.row->command() : DoSame(run);
}

static const char* ResultInWords(uint64_t result) {
  static char words[Words];
  if (result == PlannedCode) {
    return "the engine's";
  }
  snprintf(words, sizeof words, result < 0x80000000 ? "%llu" : "`0x%08llx`", (unsigned long long)result);
  return words;
}

/* Lets the command fail after two different earlier texts: if the text is the same as before in both cases,
 * the failure does not set it. */
static const char* TextInWords(Run run) {
  static char words[Words];
  static const LeaveText kLeave[] = {LeaveTextOfMissingApp, LeaveTextOfSession};
  for (size_t i = 0; i < 2; ++i) {
    char before[Words];
    StartAfresh();
    kLeave[i]();
    snprintf(before, sizeof before, "%s", GetErrorText());
    Fail(run, kLeave[i]);
    if (strcmp(before, GetErrorText()) != 0) {
      snprintf(words, sizeof words, "`%s`", GetErrorText());
      return words;
    }
  }
  return "as before";
}

static bool IsWhole(const char* inForce) {
  return strcmp(inForce, "all") == 0 || strcmp(inForce, "the old rules") == 0;
}

/* Names the query's answer only if it is wrong. */
static const char* StateInWords(Run run, bool wasStuck) {
  static char words[LongestCell];
  const char* inForce = InForce(run.feature);
  const char* counts = "";
  if (run.feature->counts != NULL && run.feature->counts() != IsWhole(inForce)) {
    counts = run.feature->counts() ? ", counts as installed" : ", counts as not installed";
  }
  snprintf(words, sizeof words, "%s%s%s", inForce, counts,
           !wasStuck && IsTransactionOpen() ? ", **stuck**" : "");
  return words;
}

/* Writes the result of a command after the failure, and the state after it. */
static void WriteStep(char* cell, Run run, uint64_t (*step)(Run run)) {
  Fail(run, LeaveTextOfSession);
  const bool wasStuck = IsTransactionOpen();
  const uint64_t result = step(run);
  snprintf(cell, LongestCell, "%s: %s", ResultInWords(result), StateInWords(run, wasStuck));
}

static const char* HelpInWords(Run run) {
  if (run.row->help == Again) {
    return "again";
  }
  if (run.row->help == OppositeFirst) {
    return "the opposite, then again";
  }
  return run.table->installs ? "`Initialize`, then all commands" : "`Initialize`, then the others";
}

static void WriteRow(char* line, Run run) {
  char again[LongestCell];
  char opposite[LongestCell];
  WriteStep(again, run, DoSame);
  WriteStep(opposite, run, DoOpposite);
  const char* text = TextInWords(run);
  const char* result = ResultInWords(Fail(run, LeaveTextOfSession));
  snprintf(line, LongestLine, "| %s | %s | %s | %s | %s | %s | %s |\n", run.row->fails, result, text,
           StateInWords(run, false), again, opposite, HelpInWords(run));
}

static bool Require(bool good, Run run, const char* what) {
  if (!good) {
    fprintf(stderr, "%s, failure \"%s\": %s\n", run.table->title, run.row->fails, what);
  }
  return good;
}

/* Whether all that was asked for is in force after the help, and the query says so. */
static bool IsMended(Run run, Help help) {
  Fail(run, LeaveTextOfSession);
  if (help == OppositeFirst) {
    DoOpposite(run);
  } else if (help == InitializeFirst) {
    InitializeLibrary();
  }
  return DoSame(run) == 0 && !IsTransactionOpen() &&
         strcmp(InForce(run.feature), run.table->installs ? "all" : "nothing") == 0 &&
         (run.feature->counts == NULL || run.feature->counts() == run.table->installs);
}

/* Whether switching on another feature has no effect if the library is stuck. */
static bool IsStuckForOthers(Run run) {
  Fail(run, LeaveTextOfSession);
  return !IsTransactionOpen() ||
         (kDhcp.install() == 0 && kDhcp.counts() && strcmp(InForce(&kDhcp), "nothing") == 0);
}

static bool WriteRowOfAll(const Table* table, const Row* row) {
  char* line = NextLine();
  bool good = true;
  for (size_t i = 0; i < MostFeatures && table->features[i] != NULL; ++i) {
    const Run run = {table, row, table->features[i]};
    char one[LongestLine];
    WriteRow(one, run);
    if (i == 0) {
      memcpy(line, one, sizeof one);
    }
    good = Require(strcmp(line, one) == 0, run, "its commands do not behave alike") && good;
    good = Require(IsMended(run, row->help), run, "what is to help does not") && good;
    good = Require(IsMended(run, InitializeFirst), run, "Initialize does not help") && good;
    good = Require(IsStuckForOthers(run), run, "stuck, and yet another feature takes effect") && good;
  }
  return good;
}

static bool WriteTables(void) {
  bool good = true;
  for (size_t t = 0; t < TableCount; ++t) {
    const Table* table = &kTables[t];
    snprintf(NextLine(), LongestLine, "\n");
    snprintf(NextLine(), LongestLine, "## %s\n", table->title);
    snprintf(NextLine(), LongestLine, "\n");
    snprintf(NextLine(), LongestLine,
             "| What fails | Result | `GetErrorText` | In force | Again | %s | What helps |\n",
             table->opposite);
    snprintf(NextLine(), LongestLine, "|---|---|---|---|---|---|---|\n");
    for (size_t r = 0; r < table->rowCount; ++r) {
      good = WriteRowOfAll(table, &table->rows[r]) && good;
    }
  }
  snprintf(NextLine(), LongestLine, "\n");
  return good;
}

/* The next line of the page, with "\n" at its end; empty after the last. */
static const char* ReadLine(FILE* page) {
  static char line[LongestLine];
  if (fgets(line, sizeof line, page) == NULL) {
    line[0] = '\0';
  }
  return line;
}

static bool IsOnPage(const char* path) {
  FILE* page = fopen(path, "r");
  if (page == NULL) {
    fprintf(stderr, "%s cannot be opened.\n", path);
    return false;
  }
  const char* line = ReadLine(page);
  unsigned number = 1;
  while (line[0] != '\0' && strcmp(line, kBegin) != 0) {
    line = ReadLine(page);
    ++number;
  }
  bool good = line[0] != '\0';
  for (size_t i = 0; good && i <= lineCount; ++i) {
    const char* happens = i == lineCount ? kEnd : lines[i];
    line = ReadLine(page);
    ++number;
    good = strcmp(line, happens) == 0;
    if (!good) {
      fprintf(stderr, "%s:%u says\n%swhere this happens:\n%s", path, number, line, happens);
    }
  }
  fclose(page);
  return good;
}

int main(int argumentCount, char** arguments) {
  const bool good = WriteTables();
  if (argumentCount == 2) {
    return good && IsOnPage(arguments[1]) ? 0 : 1;
  }
  for (size_t i = 0; i < lineCount; ++i) {
    fputs(lines[i], stdout);
  }
  return good ? 0 : 1;
}
