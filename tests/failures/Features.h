/*
 * The features that a host can switch, and which of their filters are in force. The filters are read through
 * a session that is not the library's, so changes in an open transaction of the library do not show.
 */
#pragma once

#include <stdbool.h>
#include <stddef.h>
#include <stdint.h>

/* A command with its arguments. */
typedef uint64_t (*Command)(void);

enum { MostRuleSets = 3 };

typedef struct Feature {
  Command install;
  Command installFirst; /* with other arguments, for install to replace */
  Command remove;
  bool (*counts)(void); /* whether it counts as installed; null if there is no query */
  size_t ruleSetCount;
  struct {
    const char* name;
    uint8_t key;    /* the last byte of its sublayer's key */
    size_t filters; /* the number after install */
  } ruleSets[MostRuleSets];
} Feature;

extern const Feature kInternet;
extern const Feature kDhcp;
extern const Feature kLocalNetwork;
extern const Feature kSkein;
extern const Feature kLeakProtection;

/* Begins with a fresh library and a fresh engine, on a machine with two applications; Windows Firewall blocks
 * one of them. */
void StartAfresh(void);

/* Calls Initialize with the keys of the rule sets above. */
uint64_t InitializeLibrary(void);

uint64_t DisableInternetForMissingApp(void);

/* Remembers the filters in force; InForce calls them "the old rules". */
void RememberOldRules(void);

/* Which part of a feature is in force, in words. Valid until the next call. */
const char* InForce(const Feature* feature);

bool IsTransactionOpen(void);
