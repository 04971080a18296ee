#include "Rows.h"

#define ROWS(rows) (rows), sizeof(rows) / sizeof(rows)[0]

static const Row kDisableInternetFirst[] = {
    {.fails = "an application that is not there", .command = DisableInternetForMissingApp, .help = Again},
    {.fails = "opening the session", .fault = {"FwpmEngineOpen0", 1}, .help = Again},
    {.fails = "adding the provider", .fault = {"FwpmProviderAdd0", 1}, .help = InitializeFirst},
    {.fails = "adding the sublayer", .fault = {"FwpmSubLayerAdd0", 1}, .help = Again},
    {.fails = "adding a filter", .fault = {"FwpmFilterAdd0", 2}, .help = Again},
};

static const Row kDisableInternetAgain[] = {
    {.fails = "beginning the transaction", .fault = {"FwpmTransactionBegin0", 1}, .help = Again},
    {.fails = "looking up the old sublayer", .fault = {"FwpmSubLayerGetByKey0", 1}, .help = InitializeFirst},
    {.fails = "deleting an old filter", .fault = {"FwpmFilterDeleteById0", 2}, .help = InitializeFirst},
    {.fails = "deleting the old sublayer", .fault = {"FwpmSubLayerDeleteByKey0", 1}, .help = InitializeFirst},
    {.fails = "an application that is not there",
     .command = DisableInternetForMissingApp,
     .help = InitializeFirst},
    {.fails = "adding the sublayer", .fault = {"FwpmSubLayerAdd0", 1}, .help = InitializeFirst},
    {.fails = "adding a filter", .fault = {"FwpmFilterAdd0", 2}, .help = InitializeFirst},
    {.fails = "the commit, which ends the transaction",
     .fault = {"FwpmTransactionCommit0", 1},
     .help = InitializeFirst},
    {.fails = "the commit, which leaves it open",
     .fault = {"FwpmTransactionCommit0", 1},
     .commitKeepsTransaction = true,
     .help = InitializeFirst},
};

static const Row kInstallOnce[] = {
    {.fails = "opening the session", .fault = {"FwpmEngineOpen0", 1}, .help = OppositeFirst},
    {.fails = "adding the provider", .fault = {"FwpmProviderAdd0", 1}, .help = InitializeFirst},
    {.fails = "adding the sublayer", .fault = {"FwpmSubLayerAdd0", 1}, .help = OppositeFirst},
    {.fails = "adding a filter", .fault = {"FwpmFilterAdd0", 2}, .help = OppositeFirst},
};

static const Row kSkeinFirst[] = {
    {.fails = "opening the session", .fault = {"FwpmEngineOpen0", 1}, .help = Again},
    {.fails = "adding the provider", .fault = {"FwpmProviderAdd0", 1}, .help = InitializeFirst},
    {.fails = "adding the sublayer", .fault = {"FwpmSubLayerAdd0", 1}, .help = Again},
    {.fails = "adding a filter", .fault = {"FwpmFilterAdd0", 2}, .help = Again},
};

static const Row kSkeinAgain[] = {
    {.fails = "looking up the old sublayer", .fault = {"FwpmSubLayerGetByKey0", 1}, .help = InitializeFirst},
    {.fails = "deleting an old filter", .fault = {"FwpmFilterDeleteById0", 2}, .help = Again},
    {.fails = "deleting the old sublayer", .fault = {"FwpmSubLayerDeleteByKey0", 1}, .help = Again},
    {.fails = "adding the sublayer", .fault = {"FwpmSubLayerAdd0", 1}, .help = Again},
    {.fails = "adding a filter", .fault = {"FwpmFilterAdd0", 2}, .help = Again},
};

static const Row kRemoval[] = {
    {.fails = "looking up the sublayer", .fault = {"FwpmSubLayerGetByKey0", 1}, .help = InitializeFirst},
    {.fails = "deleting a filter", .fault = {"FwpmFilterDeleteById0", 2}, .help = Again},
    {.fails = "deleting the sublayer", .fault = {"FwpmSubLayerDeleteByKey0", 1}, .help = Again},
};

static const Row kLeakFirst[] = {
    {.fails = "the application of `Initialize`",
     .fault = {"FwpmGetAppIdFromFileName0", 1},
     .help = OppositeFirst},
    {.fails = "reading what Windows Firewall blocks", .fault = {"FwpmEngineOpen0", 1}, .help = OppositeFirst},
    {.fails = "opening the session", .fault = {"FwpmEngineOpen0", 2}, .help = OppositeFirst},
    {.fails = "adding the provider", .fault = {"FwpmProviderAdd0", 1}, .help = InitializeFirst},
    {.fails = "adding a sublayer", .fault = {"FwpmSubLayerAdd0", 1}, .help = OppositeFirst},
    {.fails = "adding a filter", .fault = {"FwpmFilterAdd0", 2}, .help = OppositeFirst},
    {.fails = "adding a filter, then deleting its sublayer",
     .fault = {"FwpmFilterAdd0", 2},
     .secondFault = {"FwpmSubLayerDeleteByKey0", 1},
     .help = OppositeFirst},
};

static const Row kLeakAgain[] = {
    {.fails = "beginning the transaction", .fault = {"FwpmTransactionBegin0", 1}, .help = Again},
    {.fails = "looking up the old sublayer", .fault = {"FwpmSubLayerGetByKey0", 1}, .help = InitializeFirst},
    {.fails = "deleting an old filter", .fault = {"FwpmFilterDeleteById0", 2}, .help = InitializeFirst},
    {.fails = "deleting the old sublayer", .fault = {"FwpmSubLayerDeleteByKey0", 1}, .help = InitializeFirst},
    {.fails = "adding the sublayer", .fault = {"FwpmSubLayerAdd0", 1}, .help = InitializeFirst},
    {.fails = "adding a filter", .fault = {"FwpmFilterAdd0", 2}, .help = InitializeFirst},
    {.fails = "the commit, which ends the transaction",
     .fault = {"FwpmTransactionCommit0", 1},
     .help = InitializeFirst},
    {.fails = "the commit, which leaves it open",
     .fault = {"FwpmTransactionCommit0", 1},
     .commitKeepsTransaction = true,
     .help = InitializeFirst},
};

static const Row kLeakAfterLeavingOut[] = {
    {.fails = "nothing", .help = InitializeFirst},
};

const Table kTables[TableCount] = {
    {"`DisableInternet`, no kill switch installed",
     "`EnableInternet`",
     NothingInstalled,
     true,
     {&kInternet},
     ROWS(kDisableInternetFirst)},
    {"`DisableInternet`, a kill switch installed",
     "`EnableInternet`",
     Installed,
     true,
     {&kInternet},
     ROWS(kDisableInternetAgain)},
    {"`EnableInternet`", "`DisableInternet`", Installed, false, {&kInternet}, ROWS(kRemoval)},
    {"`EnableDhcp`, `DisableLocalNetwork`",
     "The opposite",
     NothingInstalled,
     true,
     {&kDhcp, &kLocalNetwork},
     ROWS(kInstallOnce)},
    {"`DisableDhcp`, `EnableLocalNetwork`",
     "The opposite",
     Installed,
     false,
     {&kDhcp, &kLocalNetwork},
     ROWS(kRemoval)},
    {"`EnableLeakProtection`, off",
     "`DisableLeakProtection`",
     NothingInstalled,
     true,
     {&kLeakProtection},
     ROWS(kLeakFirst)},
    {"`EnableLeakProtection`, on",
     "`DisableLeakProtection`",
     Installed,
     true,
     {&kLeakProtection},
     ROWS(kLeakAgain)},
    {"`EnableLeakProtection`, on but for the copy of Windows Firewall",
     "`DisableLeakProtection`",
     InstalledWithoutCopy,
     true,
     {&kLeakProtection},
     ROWS(kLeakAfterLeavingOut)},
    {"`DisableLeakProtection`",
     "`EnableLeakProtection`",
     Installed,
     false,
     {&kLeakProtection},
     ROWS(kRemoval)},
    {"`EnableSkeinFirewallRules`, none installed",
     "`DisableSkeinFirewallRules`",
     NothingInstalled,
     true,
     {&kSkein},
     ROWS(kSkeinFirst)},
    {"`EnableSkeinFirewallRules`, some installed",
     "`DisableSkeinFirewallRules`",
     Installed,
     true,
     {&kSkein},
     ROWS(kSkeinAgain)},
    {"`DisableSkeinFirewallRules`",
     "`EnableSkeinFirewallRules`",
     Installed,
     false,
     {&kSkein},
     ROWS(kRemoval)},
};
