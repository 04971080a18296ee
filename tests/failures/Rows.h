/*
 * The failures of the commands, from which the tables of docs/failures.md are made.
 */
#pragma once

#include "Features.h"

enum { MostFeatures = 2 };

/* The nth call of a function of the engine, from 1. */
typedef struct Fault {
  const char* function;
  size_t nth;
} Fault;

/* What has to come before the same command helps. */
typedef enum Help { Again, OppositeFirst, InitializeFirst } Help;

typedef struct Row {
  const char* fails; /* in words */
  Fault fault;
  Fault secondFault;
  Command command;             /* a command that fails by itself; null: the table's */
  bool commitKeepsTransaction; /* whether a commit that fails leaves the transaction open */
  Help help;
} Row;

typedef enum Before { NothingInstalled, Installed, InstalledWithoutCopy } Before;

/* One command in one state, for all features that behave in the same way. */
typedef struct Table {
  const char* title;
  const char* opposite;
  Before before;
  bool installs;
  const Feature* features[MostFeatures];
  const Row* rows;
  size_t rowCount;
} Table;

enum { TableCount = 12 };
extern const Table kTables[TableCount];
