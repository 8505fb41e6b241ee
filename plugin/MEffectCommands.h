// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "plugin/parameters/ParameterDefinition.h"

#include <cstddef>
#include <cstdint>

/// Numbers of the commands that an effect's entry takes, with the payloads that each one reads.
enum class MEffectCommand : std::int64_t {
    SetHostCallback = 0,         ///< context, MEffectHostCallback
    Destroy = 1,                 ///< -
    GetParameterTable = 2,       ///< -; returns an MEffectParameterTable*
    Reserved3 = 3,               ///< -
    ParameterChanged = 4,        ///< index; updates processing where the record asks for it
    Reserved5 = 5,               ///< value
    Reserved6 = 6,               ///< value
    Create = 7,                  ///< -; returns the object
    SaveParameters = 11,         ///< MXMLNode*
    LoadParameters = 12,         ///< MXMLNode*; 1 when every key was there
    Reserved13 = 13,             ///< -
    Query14 = 14,                ///< value
    SetFromDouble = 15,          ///< const double*
    Query20 = 20,                ///< value, value
    InitEffectProcessing = 100,  ///< channels, hertz, longest block in samples; 0 when ready
    ProcessEffect = 101,         ///< const MTransport*, inputs, outputs, sample count
    IsTailSilent = 102,          ///< -; 1 when silent
    Latency = 103,               ///< -; returns samples
    Reserved104 = 104,           ///< value
    TailLength = 105,            ///< -; returns samples, negative for without end
    Reserved106 = 106,           ///< -
    Reserved107 = 107,           ///< -
    ReserveFor = 108,            ///< const double*, count
};

/// One argument of a command: a tag that nobody reads and eight bytes of payload.
struct MEffectArgument {
    std::int64_t tag = 0;  ///< 0 integer, 1 pointer, 2 double
    union {
        std::int64_t integer;
        void* pointer;
        double number;
    };

    // One member of a union is all there is to initialise.
    // NOLINTBEGIN(cppcoreguidelines-pro-type-member-init)
    MEffectArgument() noexcept : integer(0) {}
    explicit MEffectArgument(std::int64_t value) noexcept : integer(value) {}
    explicit MEffectArgument(const void* value) noexcept
        : tag(1), pointer(const_cast<void*>(value)) {}
    explicit MEffectArgument(double value) noexcept : tag(2), number(value) {}
    // NOLINTEND(cppcoreguidelines-pro-type-member-init)
};
static_assert(sizeof(MEffectArgument) == 16 && offsetof(MEffectArgument, integer) == 8);

/// The arguments of one command.
struct MEffectArguments {
    MEffectArgument values[4];
};
static_assert(sizeof(MEffectArguments) == 64);

/// What an effect tells its owner.
enum class MEffectNotification : std::int64_t {
    ParameterListChanged = 2,  ///< a record was enabled or disabled
};

/// The owner's side of the notifications; the result goes back to the effect.
using MEffectHostCallback = std::int64_t (*)(void* context, std::int64_t notification,
                                             const MEffectArguments* arguments);

/// An effect's records, which its owner reads and writes directly.
struct MEffectParameterTable {
    ParameterDefinition* definitions = nullptr;
    std::int32_t count = 0;
    std::uint32_t flags = 0;
};

/// The entry of an effect library: a null object is created first; command 7 returns the object,
/// any other command its result.
using MEffectEntry = void* (*)(void* object, void* command, void* arguments);
