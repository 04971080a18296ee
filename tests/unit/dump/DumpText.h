/**
 * @file
 * Small dumps, written by hand.
 */
#pragma once

#include <stdexcept>
#include <string>
#include <string_view>

#include "dump/ReadDump.h"

/// One filter, as netsh wfp show filters writes it, less the mark of UTF-8.
inline constexpr std::string_view kFilters = R"(<?xml version="1.0" encoding="UTF-8" standalone="yes"?>
<wfpdiag>
	<filters>
		<item>
			<filterKey>{11112222-3333-4444-5555-666677778888}</filterKey>
			<displayData>
				<name>Block web</name>
				<description/>
			</displayData>
			<flags numItems="2">
				<item>FWPM_FILTER_FLAG_CLEAR_ACTION_RIGHT</item>
				<item>FWPM_FILTER_FLAG_INDEXED</item>
			</flags>
			<providerKey>{aaaa0000-0000-0000-0000-000000000001}</providerKey>
			<providerData>
				<data>41ff26</data>
				<asString>A..</asString>
			</providerData>
			<layerKey>FWPM_LAYER_ALE_AUTH_CONNECT_V4</layerKey>
			<subLayerKey>FWPM_SUBLAYER_UNIVERSAL</subLayerKey>
			<weight>
				<type>FWP_UINT8</type>
				<uint8>15</uint8>
			</weight>
			<filterCondition numItems="1">
				<item>
					<fieldKey>FWPM_CONDITION_IP_REMOTE_PORT</fieldKey>
					<matchType>FWP_MATCH_EQUAL</matchType>
					<conditionValue>
						<type>FWP_UINT16</type>
						<uint16>443</uint16>
					</conditionValue>
				</item>
			</filterCondition>
			<action>
				<type>FWP_ACTION_BLOCK</type>
				<filterType/>
			</action>
			<rawContext>0</rawContext>
			<reserved/>
			<filterId>70000</filterId>
			<effectiveWeight>
				<type>FWP_UINT64</type>
				<uint64>17293822569102704704</uint64>
			</effectiveWeight>
		</item>
	</filters>
	<providers>
		<item>
			<providerKey>{aaaa0000-0000-0000-0000-000000000001}</providerKey>
			<displayData>
				<name>Somebody</name>
				<description>Somebody's filters</description>
			</displayData>
			<flags numItems="1">
				<item>FWPM_PROVIDER_FLAG_PERSISTENT</item>
			</flags>
			<providerData/>
			<serviceName>svc</serviceName>
		</item>
	</providers>
</wfpdiag>
)";

/// An engine, as netsh wfp show state writes it, less the mark of UTF-8 and what is skipped.
inline constexpr std::string_view kState = R"(<?xml version="1.0" encoding="UTF-8" standalone="yes"?>
<wfpstate>
	<timeStamp>2026-11-01T08:00:00.000Z</timeStamp>
	<sessions/>
	<layers numItems="2">
		<item>
			<layer>
				<layerKey>FWPM_LAYER_ALE_AUTH_CONNECT_V4</layerKey>
				<displayData>
					<name>ALE Connect v4 Layer</name>
					<description/>
				</displayData>
				<flags numItems="3">
					<item>FWPM_LAYER_FLAG_KERNEL</item>
					<item>FWPM_LAYER_FLAG_BUILTIN</item>
					<item>FWPM_LAYER_FLAG_CLASSIFY_MOSTLY</item>
				</flags>
				<field numItems="2">
					<item>
						<fieldKey>FWPM_CONDITION_IP_REMOTE_ADDRESS</fieldKey>
						<type>FWPM_FIELD_IP_ADDRESS</type>
						<dataType>FWP_UINT32</dataType>
					</item>
					<item>
						<fieldKey>FWPM_CONDITION_FLAGS</fieldKey>
						<type>FWPM_FIELD_FLAGS</type>
						<dataType>FWP_UINT32</dataType>
					</item>
				</field>
				<defaultSubLayerKey>FWPM_SUBLAYER_UNIVERSAL</defaultSubLayerKey>
				<layerId>48</layerId>
			</layer>
			<callouts numItems="1">
				<item>
					<calloutKey>{cccc0000-0000-0000-0000-000000000001}</calloutKey>
					<displayData>
						<name>Inspector</name>
						<description>Looks at connections</description>
					</displayData>
					<flags numItems="3">
						<item>FWPM_CALLOUT_FLAG_USES_PROVIDER_CONTEXT</item>
						<item>FWPM_CALLOUT_FLAG_REGISTERED</item>
						<item>00000300</item>
					</flags>
					<providerKey>{aaaa0000-0000-0000-0000-000000000001}</providerKey>
					<providerData/>
					<applicableLayer>FWPM_LAYER_ALE_AUTH_CONNECT_V4</applicableLayer>
					<calloutId>297</calloutId>
				</item>
			</callouts>
			<filters numItems="1">
				<item>
					<filterKey>{11112222-3333-4444-5555-666677778888}</filterKey>
					<displayData>
						<name>Inspect</name>
						<description/>
					</displayData>
					<flags numItems="1">
						<item>FWPM_FILTER_FLAG_HAS_PROVIDER_CONTEXT</item>
					</flags>
					<providerKey/>
					<providerData/>
					<layerKey>FWPM_LAYER_ALE_AUTH_CONNECT_V4</layerKey>
					<subLayerKey>{5ab10000-0000-0000-0000-000000000001}</subLayerKey>
					<weight>
						<type>FWP_EMPTY</type>
					</weight>
					<filterCondition/>
					<action>
						<type>FWP_ACTION_CALLOUT_INSPECTION</type>
						<filterType>{cccc0000-0000-0000-0000-000000000001}</filterType>
					</action>
					<providerContextKey>{c0c00000-0000-0000-0000-000000000001}</providerContextKey>
					<reserved/>
					<filterId>70001</filterId>
					<effectiveWeight>
						<type>FWP_UINT64</type>
						<uint64>0</uint64>
					</effectiveWeight>
				</item>
			</filters>
		</item>
		<item>
			<layer>
				<layerKey>FWPM_LAYER_IPFORWARD_V6</layerKey>
				<displayData>
					<name/>
					<description/>
				</displayData>
				<flags/>
				<field/>
				<defaultSubLayerKey>FWPM_SUBLAYER_UNIVERSAL</defaultSubLayerKey>
				<layerId>10</layerId>
			</layer>
			<callouts/>
			<filters/>
		</item>
	</layers>
	<providers numItems="1">
		<item>
			<providerKey>{aaaa0000-0000-0000-0000-000000000001}</providerKey>
			<displayData>
				<name>Somebody</name>
				<description/>
			</displayData>
			<flags/>
			<providerData/>
			<serviceName/>
		</item>
	</providers>
	<providerContexts numItems="2">
		<item>
			<providerContextKey>{c0c00000-0000-0000-0000-000000000001}</providerContextKey>
			<displayData>
				<name>Origin</name>
				<description/>
			</displayData>
			<flags numItems="1">
				<item>FWPM_PROVIDER_CONTEXT_FLAG_PERSISTENT</item>
			</flags>
			<providerKey>{aaaa0000-0000-0000-0000-000000000001}</providerKey>
			<providerData/>
			<type>FWPM_GENERAL_CONTEXT</type>
			<dataBuffer>
				<data>4100</data>
				<asString>A.</asString>
			</dataBuffer>
			<providerContextId>9223372036854775808</providerContextId>
		</item>
		<item>
			<providerContextKey>{c0c00000-0000-0000-0000-000000000002}</providerContextKey>
			<displayData>
				<name>Options</name>
				<description/>
			</displayData>
			<flags/>
			<providerKey/>
			<providerData/>
			<type>FWPM_CLASSIFY_OPTIONS_CONTEXT</type>
			<classifyOptions>
				<options numItems="1">
					<item>
						<type>FWP_CLASSIFY_OPTION_LOOSE_SOURCE_MAPPING</type>
						<flags/>
					</item>
				</options>
			</classifyOptions>
			<providerContextId>9</providerContextId>
		</item>
	</providerContexts>
	<subLayers numItems="1">
		<item>
			<subLayerKey>{5ab10000-0000-0000-0000-000000000001}</subLayerKey>
			<displayData>
				<name>Inspections</name>
				<description/>
			</displayData>
			<flags numItems="1">
				<item>FWPM_SUBLAYER_FLAG_PERSISTENT</item>
			</flags>
			<providerKey>{aaaa0000-0000-0000-0000-000000000001}</providerKey>
			<providerData/>
			<weight>65535</weight>
		</item>
	</subLayers>
</wfpstate>
)";

/// A dump with one piece of it replaced, which must be there.
inline std::string Replaced(std::string_view dump, std::string_view piece, std::string_view by) {
  const std::size_t position = dump.find(piece);
  if (position == std::string_view::npos) {
    throw std::invalid_argument("no such piece: " + std::string(piece));
  }
  return std::string(dump).replace(position, piece.size(), by);
}

/// kFilters with another value in its condition, on a field of that name.
inline std::string WithValue(std::string_view field, std::string_view value) {
  return Replaced(Replaced(kFilters, "FWPM_CONDITION_IP_REMOTE_PORT", field),
                  "<type>FWP_UINT16</type>\n\t\t\t\t\t\t<uint16>443</uint16>", value);
}

/// What reading a file "m.xml" of that content says is wrong; "none" if it is read.
inline std::string RefusalOf(const std::string& dump) {
  try {
    Dump::ReadDump(dump, "m.xml");
  } catch (const Dump::DumpError& error) {
    return error.what();
  }
  return "none";
}
