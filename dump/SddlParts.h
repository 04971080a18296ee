/**
 * @file
 * The parts of SDDL: from text, where a cursor stands, into bytes, and from bytes into text.
 */
#pragma once

#include <WfpPlatform.h>

#include <span>
#include <string>

#include "dump/Bytes.h"
#include "dump/Sddl.h"
#include "dump/SddlCursor.h"

// All of them throw SddlError for what they do not understand.
namespace Dump {

/// The bytes of the SID or abbreviation that comes next.
Bytes TakeSid(SddlCursor& cursor, DomainSids domainSids);

/// The bytes of the conditional expression that comes next, with its parentheses.
Bytes TakeCondition(SddlCursor& cursor, DomainSids domainSids);

/// The bytes of the resource attribute that comes next, with its parentheses.
Bytes TakeAttribute(SddlCursor& cursor, DomainSids domainSids);

/// UTF-16 of the quoted text that comes next, escapes resolved.
Bytes TakeQuoted(SddlCursor& cursor);
/// The bytes that come next as "#" and hexadecimal digits.
Bytes TakeOctets(SddlCursor& cursor);
/// The integer that comes next: 8 bytes, how its sign and its base were written.
Bytes TakeInteger(SddlCursor& cursor);
/// The attribute that comes next: its token, and its name's size and UTF-16.
Bytes TakeAttributeName(SddlCursor& cursor);

/// "SY", or "S-1-..." for a SID that has no abbreviation.
std::string SidText(std::span<const UINT8> sid);
/// "(@User.Title == \"PM\")", of the bytes behind an entry's SID.
std::string ConditionText(std::span<const UINT8> condition);
/// "(\"Project\",TS,0x0,\"Windows\")"
std::string AttributeText(std::span<const UINT8> attribute);

/// The text of UTF-16 in quotes, with escapes.
std::string QuotedText(std::span<const UINT8> utf16);
/// "#0aff"
std::string OctetsText(std::span<const UINT8> bytes);
/// "-0x1f", of what TakeInteger gives.
std::string IntegerText(ByteReader& integer);
/// "@User.Title", of a token and a name in UTF-16.
std::string AttributeNameText(UINT8 token, std::span<const UINT8> utf16);

}  // namespace Dump
