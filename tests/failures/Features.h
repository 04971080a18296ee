/*
 * What a host can switch, and what an outsider sees of it: the rule sets of each feature in the emulated
 * engine, read through a session of its own. That session sees what is in force, not what an open
 * transaction of the library's holds.
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
  Command installFirst; /* other rules, for install to replace */
  Command remove;
  bool (*counts)(void); /* as installed; null when there is no query */
  size_t ruleSetCount;
  struct {
    const char* name;
    uint8_t key;    /* the last byte of its sublayer's */
    size_t filters; /* which install gives it */
  } ruleSets[MostRuleSets];
} Feature;

extern const Feature kInternet;
extern const Feature kDhcp;
extern const Feature kLocalNetwork;
extern const Feature kSkein;
extern const Feature kLeakProtection;

/* A fresh engine, on a machine with two applications of which Windows Firewall blocks one, and a fresh
 * library. */
void StartAfresh(void);

/* Initialize with the keys that the rule sets above have. */
uint64_t InitializeLibrary(void);

uint64_t DisableInternetForMissingApp(void);

/* Remembers what is in force as the old rules. */
void RememberOldRules(void);

/* What is in force of a feature, in words. Valid until the next call. */
const char* InForce(const Feature* feature);

bool IsTransactionOpen(void);
