// SPDX-License-Identifier: MIT
// A name for every number that crosses the boundary: results, access modes and the host's bytes.
#pragma once

namespace dx4 {

/// Results of intf_checkAddr and intf_checkAddrValidity.
enum AddressCheck {
    AddressAccepted = 0, ///< acceptable
    AddressNotOffered = 1, ///< known type with typeFlag 0 or subIndex -1; nothing was parsed
    AddressOutOfRange = 2, ///< address, or address + count, leaves the type's range
    AddressTypeUnknown = 3, ///< no such register type, or "F" group a or b
    AddressMalformed = 4, ///< the text is not an address of this type
    AddressReadOnly = 6, ///< write access to "D", "SW" or "FU"
    AddressWriteOnly = 7, ///< read access to "CW" or "FRE"
    AddressTooLong = 16, ///< more characters than the type's format has
};

/// Access asked of intf_checkAddr.
enum AccessMode {
    ReadAccess = 0,
    WriteAccess = 1,
    ReadWriteAccess = 2,
};

/// Results of intf_multiCopy.
enum MultiCopyResult {
    CopyTypeUnknown = 0, ///< no such register type; nothing appended
    CopyInRange = 1, ///< every copy lies inside the range
    CopyClamped = 2, ///< at least one copy was replaced by the highest address
};

/// Results of intf_getSendFrame.
enum SendResult {
    NothingToSend = 0,
    FrameReady = 1,
};

/// Results of intf_dealRcvFrame.
enum ReplyResult {
    NoRequestPending = 0, ///< nothing was waiting for a reply; nothing done
    ReplyAccepted = 1, ///< the request's frame is answered
    RequestGivenUp = 2, ///< the retry limit is reached; the request is dropped as failed
    ReplyBad = 8, ///< wrong length or CRC; the same frame is to be sent again
};

/// Results of check_rcv_data.
enum ReplyCheck {
    ReplyRefused = 0, ///< wrong length or wrong CRC
    ReplyCarriesData = 1,
    ReplyWithoutData = 2, ///< a write echo, or nothing where nothing was expected
};

/// What the driver is serving: korvane_dx4::phase.
enum Phase {
    PhaseIdle = 0,
    PhaseWrite = 2,
    PhaseConditionRead = 3,
    PhaseCyclicRead = 4,
    PhaseRecipeWrite = 5,
    PhaseRecipeRead = 6,
};

/// What most entry points return in every case.
inline constexpr int alwaysDone = 1;

/// VARIABLE::varKind of a cyclic read.
inline constexpr int cyclicReadKind = 4;

/// Bytes of the host's shared block that ask for a recipe transfer while they are 1.
inline constexpr int recipeWriteFlag = 60115;
inline constexpr int recipeReadFlag = 60116;

/// Smallest shared block that holds both request bytes.
inline constexpr int hostBlockBytes = 60117;

} // namespace dx4
