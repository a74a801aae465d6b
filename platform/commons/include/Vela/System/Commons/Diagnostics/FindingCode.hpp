#pragma once

#include <algorithm>
#include <array>
#include <cstdint>

namespace Vela::System::Commons::Diagnostics
{

/// What can be wrong with the documents and files of a system, as a number that does not change: append, never
/// renumber. All layers share the numbering.
enum class FindingCode : std::uint16_t
{
    UnreadableFile = 1001,
    MalformedDocument = 1002,
    WrongRootElement = 1003,
    MissingAttribute = 1004,
    InvalidAttribute = 1005,
    InvalidInclude = 1006,
    UnknownElement = 1007,
    UnknownAttribute = 1008,
    IgnoredText = 1009,

    UndefinedVariable = 1101,
    CircularVariable = 1102,
    ContradictoryVariable = 1103,
    RedefinedNothing = 1104,
    InvalidVariable = 1105,
    UnusedVariable = 1106,

    DuplicateName = 1201,
    DuplicateComponent = 1202,
    InvalidValue = 1203,
    OverruledGeneric = 1204,
    IneffectiveGeneric = 1205,
    UnknownProcess = 1206,
    UnknownLibrary = 1207,
    DroppedProcess = 1208,
    UnusedLibrary = 1209,
    IneffectiveAttribute = 1210,
    UnrunComponent = 1211,
    InvalidExecutable = 1212,
    MissingDirectory = 1213,
    MissingSettingsFile = 1214,

    MissingLibrary = 1301,
    WrongArchitecture = 1302,
    ContractMismatch = 1303,
    MissingDependency = 1304,
    UnloadableLibrary = 1305,
    UnknownComponentType = 1306,
    NoComponentLibrary = 1307,

    RefusedAccess = 1401,
    DoubtfulAccess = 1402,

    InvalidSecuritySettings = 1501,
    InvalidRemotingSettings = 1502,
    InvalidLogConfiguration = 1503,
    InvalidNotificationSettings = 1504,
    InvalidGatewayPort = 1505,
};

enum class FindingSeverity : std::uint8_t
{
    /// The runtime refuses it, or fails with it.
    Error,
    /// It works, but not as it is written.
    Warning,
    /// It may be as it was meant.
    Note,
};

struct FindingDescription
{
    FindingCode code;
    FindingSeverity severity;
    const char* meaning;
};

/// The one list of all codes.
inline constexpr auto findingDescriptions = []
{
    using enum FindingCode;
    using enum FindingSeverity;
    return std::to_array<FindingDescription>({
        {UnreadableFile, Error, "A file cannot be read."},
        {MalformedDocument, Error, "A document is not well-formed."},
        {WrongRootElement, Error, "A document is of another kind."},
        {MissingAttribute, Error, "A mandatory attribute is missing."},
        {InvalidAttribute, Error, "An attribute's text does not fit its type."},
        {InvalidInclude, Error, "An include cannot be followed."},
        {UnknownElement, Warning, "An element is not known there; it is skipped."},
        {UnknownAttribute, Warning, "An attribute is not known there; it is ignored."},
        {IgnoredText, Warning, "Text stands between the elements; it is ignored."},
        {UndefinedVariable, Error, "A placeholder names a variable that nobody defines, or is malformed."},
        {CircularVariable, Error, "Variables need each other in a circle, or in an endless chain."},
        {ContradictoryVariable, Error, "A variable is defined twice with different values."},
        {RedefinedNothing, Error, "A variable is redefined that has no definition."},
        {InvalidVariable, Error, "A variable's definition contradicts itself, or no environment can hold it."},
        {UnusedVariable, Note, "No document names a variable; perhaps a component reads it."},
        {DuplicateName, Error, "A process, library or dependency is declared twice."},
        {DuplicateComponent, Error, "Two components have one name."},
        {InvalidValue, Error, "A value is not allowed there."},
        {OverruledGeneric, Warning, "A component of one process stands in the way of the copy of a generic one."},
        {IneffectiveGeneric, Warning, "What a generic component says has no effect."},
        {UnknownProcess, Error, "A component names a process that is not configured."},
        {UnknownLibrary, Error, "A component names a library that is not configured."},
        {DroppedProcess, Warning, "A process has no component of its own and is dropped."},
        {UnusedLibrary, Note, "No component needs a library."},
        {IneffectiveAttribute, Warning, "An attribute has no effect on a process of that kind."},
        {UnrunComponent, Note, "Nobody runs a component: it is disabled, or its process is external."},
        {InvalidExecutable, Error, "A process's executable does not exist or cannot be executed."},
        {MissingDirectory, Error, "A process's working directory does not exist."},
        {MissingSettingsFile, Warning, "A component's settings file does not exist."},
        {MissingLibrary, Error, "A library's file does not exist."},
        {WrongArchitecture, Error, "A library is made for another architecture."},
        {ContractMismatch, Error,
         "A library was built against another contract or interface layout, or its note is damaged."},
        {MissingDependency, Error, "A library needs a shared object that is not found."},
        {UnloadableLibrary, Error, "A library cannot be loaded, or crashes or hangs when it is."},
        {UnknownComponentType, Error, "A library does not have a component's type."},
        {NoComponentLibrary, Error, "A component's library has no entry function or no components."},
        {RefusedAccess, Error, "Others can change a file, and that is refused."},
        {DoubtfulAccess, Warning, "Others can change a file."},
        {InvalidSecuritySettings, Error, "The security settings file is not valid."},
        {InvalidRemotingSettings, Error, "The remoting settings file is not valid."},
        {InvalidLogConfiguration, Error, "The log configuration file is not valid."},
        {InvalidNotificationSettings, Error, "The settings file of the notifications is not valid."},
        {InvalidGatewayPort, Error, "The variable 'VelaGatewayPort' names no TCP port."},
    });
}();

/// What is known about a code.
constexpr const FindingDescription& Describe(FindingCode code)
{
    return *std::find_if(findingDescriptions.begin(), findingDescriptions.end(),
                         [code](const FindingDescription& description) { return description.code == code; });
}

} // namespace Vela::System::Commons::Diagnostics
