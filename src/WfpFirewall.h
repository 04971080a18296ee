/**
 * @file
 * All exported classes of the object model.
 */
#pragma once

#include "engine/Engine.h"
#include "engine/Firewall.h"
#include "engine/FirewallException.h"
#include "engine/Provider.h"
#include "engine/Sublayer.h"
#include "filtering/AppId.h"
#include "filtering/BaseValue.h"
#include "filtering/Condition.h"
#include "filtering/Filter.h"
#include "filtering/FilterBuilder.h"
#include "filtering/IpV4Address.h"
#include "filtering/IpV6Address.h"
#include "filtering/Layer.h"
#include "filtering/Values.h"
#include "helpers/NetworkInfo.h"
#include "helpers/NetworkInfoException.h"
#include "helpers/NetworkInterface.h"
#include "sublayers/BlockAppsBlockedInWinFirewall.h"
#include "sublayers/DnsLeakProtection.h"
#include "sublayers/EnableDhcp.h"
#include "sublayers/InterfaceLeakProtection.h"
#include "sublayers/KillSwitch.h"
#include "sublayers/KillSwitchFilteredByInterface.h"
#include "sublayers/KillSwitchWithWhitelistedApps.h"
#include "sublayers/LocalNetworkBlock.h"
#include "sublayers/SkeinFirewallRules.h"
