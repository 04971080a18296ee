/**
 * @file
 * What SDDL abbreviates.
 */
#pragma once

#include <WfpPlatform.h>

#include <array>
#include <cstddef>
#include <string_view>

namespace Dump {

/// Bits of a descriptor's control word.
inline constexpr UINT16 kDaclPresent = 0x0004;
inline constexpr UINT16 kSaclPresent = 0x0010;
inline constexpr UINT16 kSelfRelative = 0x8000;

/// A flag of an access control list, and its bit of the DACL in the control word. The SACL's is the next.
struct AclFlag {
  std::string_view name;
  UINT16 bit;
};
inline constexpr int kSaclShift = 1;
inline constexpr auto kAclFlags = std::to_array<AclFlag>({{"P", 0x1000}, {"AR", 0x0100}, {"AI", 0x0400}});

inline constexpr std::string_view kNullAcl = "NO_ACCESS_CONTROL";

/// Where a descriptor's head has the offsets of its parts.
inline constexpr std::size_t kOwnerAt = 4;
inline constexpr std::size_t kGroupAt = 8;
inline constexpr std::size_t kSaclAt = 12;
inline constexpr std::size_t kDaclAt = 16;
inline constexpr std::size_t kHeadSize = 20;

/// What an access control entry holds besides flags, rights and a SID.
enum class AceTail { None, Condition, Attribute };

struct AceType {
  std::string_view name;
  UINT8 type;
  bool hasObjects = false;  ///< names types of objects by GUID
  AceTail tail = AceTail::None;
};

inline constexpr UINT8 kMandatoryLabelAce = 0x11;
inline constexpr UINT8 kAccessFilterAce = 0x15;

inline constexpr auto kAceTypes = std::to_array<AceType>({
    {"A", 0x00},
    {"D", 0x01},
    {"AU", 0x02},
    {"AL", 0x03},
    {"OA", 0x05, true},
    {"OD", 0x06, true},
    {"OU", 0x07, true},
    {"OL", 0x08, true},
    {"XA", 0x09, false, AceTail::Condition},
    {"XD", 0x0A, false, AceTail::Condition},
    {"ZA", 0x0B, true, AceTail::Condition},
    {"XU", 0x0D, false, AceTail::Condition},
    {"ML", kMandatoryLabelAce},
    {"RA", 0x12, false, AceTail::Attribute},
    {"SP", 0x13},
    {"TL", 0x14},
    {"FL", kAccessFilterAce, false, AceTail::Condition},
});

/// A name for some bits.
struct SddlBits {
  std::string_view name;
  UINT32 bits;
};

inline constexpr auto kAceFlags = std::to_array<SddlBits>({
    {"OI", 0x01},
    {"CI", 0x02},
    {"NP", 0x04},
    {"IO", 0x08},
    {"ID", 0x10},
    {"CR", 0x20},
    {"SA", 0x40},
    {"TP", 0x40},  // of an access filter
    {"FA", 0x80},
});

/// Rights of one bit each, in the order in which they are written.
inline constexpr auto kSingleRights = std::to_array<SddlBits>({
    {"CC", 0x00000001},
    {"DC", 0x00000002},
    {"LC", 0x00000004},
    {"SW", 0x00000008},
    {"RP", 0x00000010},
    {"WP", 0x00000020},
    {"DT", 0x00000040},
    {"LO", 0x00000080},
    {"CR", 0x00000100},
    {"SD", 0x00010000},
    {"RC", 0x00020000},
    {"WD", 0x00040000},
    {"WO", 0x00080000},
    {"GA", 0x10000000},
    {"GX", 0x20000000},
    {"GW", 0x40000000},
    {"GR", 0x80000000},
});

/// Sets of rights, written where they are all that an entry has.
inline constexpr auto kRightSets = std::to_array<SddlBits>({
    {"FA", 0x1F01FF},
    {"FR", 0x120089},
    {"FW", 0x120116},
    {"FX", 0x1200A0},
    {"KA", 0x0F003F},
    {"KR", 0x020019},
    {"KW", 0x020006},
    {"KX", 0x020019},
});

/// The rights of a mandatory label.
inline constexpr auto kLabelRights = std::to_array<SddlBits>({{"NW", 0x1}, {"NR", 0x2}, {"NX", 0x4}});

/// Where an abbreviated SID comes from.
enum class SidOrigin {
  Known,   ///< everywhere the same
  Domain,  ///< the machine's domain, its forest's root, or the machine itself
};

struct SidName {
  std::string_view name;
  std::string_view sid;  ///< less "S-1-"; of a domain's SID the last number alone
  SidOrigin origin = SidOrigin::Known;
};

inline constexpr auto kSidNames = std::to_array<SidName>({
    {"AA", "5-32-579"},
    {"AC", "15-2-1"},
    {"AN", "5-7"},
    {"AO", "5-32-548"},
    {"AP", "525", SidOrigin::Domain},
    {"AS", "18-1"},
    {"AU", "5-11"},
    {"BA", "5-32-544"},
    {"BG", "5-32-546"},
    {"BO", "5-32-551"},
    {"BU", "5-32-545"},
    {"CA", "517", SidOrigin::Domain},
    {"CD", "5-32-574"},
    {"CG", "3-1"},
    {"CN", "522", SidOrigin::Domain},
    {"CO", "3-0"},
    {"CY", "5-32-569"},
    {"DA", "512", SidOrigin::Domain},
    {"DC", "515", SidOrigin::Domain},
    {"DD", "516", SidOrigin::Domain},
    {"DG", "514", SidOrigin::Domain},
    {"DU", "513", SidOrigin::Domain},
    {"EA", "519", SidOrigin::Domain},
    {"ED", "5-9"},
    {"EK", "527", SidOrigin::Domain},
    {"ER", "5-32-573"},
    {"ES", "5-32-576"},
    {"HA", "5-32-578"},
    {"HI", "16-12288"},
    {"HO", "5-32-584"},
    {"IS", "5-32-568"},
    {"IU", "5-4"},
    {"KA", "526", SidOrigin::Domain},
    {"LA", "500", SidOrigin::Domain},
    {"LG", "501", SidOrigin::Domain},
    {"LS", "5-19"},
    {"LU", "5-32-559"},
    {"LW", "16-4096"},
    {"ME", "16-8192"},
    {"MP", "16-8448"},
    {"MS", "5-32-577"},
    {"MU", "5-32-558"},
    {"NO", "5-32-556"},
    {"NS", "5-20"},
    {"NU", "5-2"},
    {"OW", "3-4"},
    {"PA", "520", SidOrigin::Domain},
    {"PO", "5-32-550"},
    {"PS", "5-10"},
    {"PU", "5-32-547"},
    {"RA", "5-32-575"},
    {"RC", "5-12"},
    {"RD", "5-32-555"},
    {"RE", "5-32-552"},
    {"RM", "5-32-580"},
    {"RO", "498", SidOrigin::Domain},
    {"RS", "553", SidOrigin::Domain},
    {"RU", "5-32-554"},
    {"SA", "518", SidOrigin::Domain},
    {"SH", "5-32-585"},
    {"SI", "16-16384"},
    {"SO", "5-32-549"},
    {"SS", "18-2"},
    {"SU", "5-6"},
    {"SY", "5-18"},
    {"UD", "5-84-0-0-0-0-0"},
    {"WD", "1-0"},
    {"WR", "5-33"},
});

}  // namespace Dump
