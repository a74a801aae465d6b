#pragma once

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
inline constexpr std::array findingDescriptions{
    FindingDescription{FindingCode::UnreadableFile, FindingSeverity::Error, "A file cannot be read."},
    FindingDescription{FindingCode::MalformedDocument, FindingSeverity::Error, "A document is not well-formed."},
    FindingDescription{FindingCode::WrongRootElement, FindingSeverity::Error, "A document is of another kind."},
    FindingDescription{FindingCode::MissingAttribute, FindingSeverity::Error, "A mandatory attribute is missing."},
    FindingDescription{FindingCode::InvalidAttribute, FindingSeverity::Error,
                       "An attribute's text does not fit its type."},
    FindingDescription{FindingCode::InvalidInclude, FindingSeverity::Error, "An include cannot be followed."},
    FindingDescription{FindingCode::UnknownElement, FindingSeverity::Warning,
                       "An element is not known there; it is skipped."},
    FindingDescription{FindingCode::UnknownAttribute, FindingSeverity::Warning,
                       "An attribute is not known there; it is ignored."},
    FindingDescription{FindingCode::IgnoredText, FindingSeverity::Warning,
                       "Text stands between the elements; it is ignored."},
    FindingDescription{FindingCode::UndefinedVariable, FindingSeverity::Error,
                       "A placeholder names a variable that nobody defines, or is malformed."},
    FindingDescription{FindingCode::CircularVariable, FindingSeverity::Error,
                       "Variables need each other in a circle, or in an endless chain."},
    FindingDescription{FindingCode::ContradictoryVariable, FindingSeverity::Error,
                       "A variable is defined twice with different values."},
    FindingDescription{FindingCode::RedefinedNothing, FindingSeverity::Error,
                       "A variable is redefined that has no definition."},
    FindingDescription{FindingCode::InvalidVariable, FindingSeverity::Error,
                       "A variable's definition contradicts itself, or no environment can hold it."},
    FindingDescription{FindingCode::UnusedVariable, FindingSeverity::Note,
                       "No document names a variable; perhaps a component reads it."},
    FindingDescription{FindingCode::DuplicateName, FindingSeverity::Error,
                       "A process, library or dependency is declared twice."},
    FindingDescription{FindingCode::DuplicateComponent, FindingSeverity::Error, "Two components have one name."},
    FindingDescription{FindingCode::InvalidValue, FindingSeverity::Error, "A value is not allowed there."},
    FindingDescription{FindingCode::OverruledGeneric, FindingSeverity::Warning,
                       "A component of one process stands in the way of the copy of a generic one."},
    FindingDescription{FindingCode::IneffectiveGeneric, FindingSeverity::Warning,
                       "What a generic component says has no effect."},
    FindingDescription{FindingCode::UnknownProcess, FindingSeverity::Error,
                       "A component names a process that is not configured."},
    FindingDescription{FindingCode::UnknownLibrary, FindingSeverity::Error,
                       "A component names a library that is not configured."},
    FindingDescription{FindingCode::DroppedProcess, FindingSeverity::Warning,
                       "A process has no component of its own and is dropped."},
    FindingDescription{FindingCode::UnusedLibrary, FindingSeverity::Note, "No component needs a library."},
    FindingDescription{FindingCode::IneffectiveAttribute, FindingSeverity::Warning,
                       "An attribute has no effect on a process of that kind."},
    FindingDescription{FindingCode::UnrunComponent, FindingSeverity::Note,
                       "Nobody runs a component: it is disabled, or its process is external."},
    FindingDescription{FindingCode::InvalidExecutable, FindingSeverity::Error,
                       "A process's executable does not exist or cannot be executed."},
    FindingDescription{FindingCode::MissingDirectory, FindingSeverity::Error,
                       "A process's working directory does not exist."},
    FindingDescription{FindingCode::MissingSettingsFile, FindingSeverity::Warning,
                       "A component's settings file does not exist."},
    FindingDescription{FindingCode::MissingLibrary, FindingSeverity::Error, "A library's file does not exist."},
    FindingDescription{FindingCode::WrongArchitecture, FindingSeverity::Error,
                       "A library is made for another architecture."},
    FindingDescription{FindingCode::ContractMismatch, FindingSeverity::Error,
                       "A library was built against another contract or interface layout, or its note is damaged."},
    FindingDescription{FindingCode::MissingDependency, FindingSeverity::Error,
                       "A library needs a shared object that is not found."},
    FindingDescription{FindingCode::UnloadableLibrary, FindingSeverity::Error,
                       "A library cannot be loaded, or crashes or hangs when it is."},
    FindingDescription{FindingCode::UnknownComponentType, FindingSeverity::Error,
                       "A library does not have a component's type."},
    FindingDescription{FindingCode::NoComponentLibrary, FindingSeverity::Error,
                       "A component's library has no entry function or no components."},
    FindingDescription{FindingCode::RefusedAccess, FindingSeverity::Error,
                       "Others can change a file, and that is refused."},
    FindingDescription{FindingCode::DoubtfulAccess, FindingSeverity::Warning, "Others can change a file."},
    FindingDescription{FindingCode::InvalidSecuritySettings, FindingSeverity::Error,
                       "The security settings file is not valid."},
    FindingDescription{FindingCode::InvalidRemotingSettings, FindingSeverity::Error,
                       "The remoting settings file is not valid."},
    FindingDescription{FindingCode::InvalidLogConfiguration, FindingSeverity::Error,
                       "The log configuration file is not valid."},
};

} // namespace Vela::System::Commons::Diagnostics
