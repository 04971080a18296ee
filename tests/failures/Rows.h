/*
 * The failures of the commands: what the tables of the page are made from.
 */
#pragma once

#include "Features.h"

enum { MostFeatures = 2 };

/* The nth call of a function of the engine, from 1. */
typedef struct Fault {
  const char* function;
  size_t nth;
} Fault;

/* Before the command once more. */
typedef enum Help { Again, OppositeFirst, InitializeFirst } Help;

typedef struct Row {
  const char* fails; /* in words */
  Fault fault;
  Fault secondFault;
  Command command;             /* which fails by itself, in place of the table's */
  bool commitKeepsTransaction; /* the other reading of what the engine does */
  Help help;
} Row;

typedef enum Before { NothingInstalled, Installed, InstalledWithoutCopy } Before;

/* One command in one state, for features that behave alike. */
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
