#pragma once

#include <Vela/String.hpp>
#include <Vela/System/Commons/Api.hpp>

#include <sys/types.h>

#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

namespace Vela::System::Commons::Diagnostics
{

/// The records that crashes and failed set-ups leave in a runtime directory: one text file each, readable for its user
/// alone, of fields "name: value". A value of several lines begins on the line behind its name, each line with two
/// blanks in front. When there are more than ten, the oldest are removed.
///
/// A record keeps the id of the process that began it in its name, so that a parent can add what it knows.
class VELA_COMMONS_API CrashRecords
{
public:
    static constexpr const char* directoryName = "crashes";
    static constexpr const char* fileNameEnd = ".txt";
    /// When each step of the last failed start began and ended; one file, no record.
    static constexpr const char* timelineFileName = "timeline.json";
    static constexpr std::size_t mostRecords = 10;

    using Fields = std::vector<std::pair<String, String>>;

    explicit CrashRecords(const String& runtimeDirectory);

    /// The names of the records, oldest first; none when there is no directory.
    [[nodiscard]] std::vector<String> List() const;
    /// The name of the record that a process began; empty without one.
    /// @param since  seconds since 1970; what is older belongs to an earlier process of that number
    [[nodiscard]] String FindOf(pid_t process, std::int64_t since) const;
    /// The fields of a record in their order.
    /// @throws NotExistException when there is no record of that name
    [[nodiscard]] Fields Read(const String& name) const;

    /// Begins a record of this process, with the present time, and removes the oldest ones.
    /// @return its name
    /// @throws Exception when it cannot be written
    String Begin(const Fields& fields) const;
    /// Adds fields to a record.
    /// @throws Exception when it cannot be written
    void Append(const String& name, const Fields& fields) const;
    /// Removes the oldest records beyond the given number.
    void RemoveOldest(std::size_t most = mostRecords) const;

    /// The last messages of this process's log, a line each.
    [[nodiscard]] static String GetRecentMessages();

private:
    [[nodiscard]] String GetPath(const String& name) const;

    const String directory;
};

} // namespace Vela::System::Commons::Diagnostics
