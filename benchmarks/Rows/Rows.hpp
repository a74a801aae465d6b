#pragma once

#include "Harness/Table.hpp"

#include <string>
#include <vector>

namespace Vela::Benchmarks
{

/// The rows of the table, by what is measured.
std::vector<Row> MeasureRemoteCalls(Effort effort);
std::vector<Row> MeasureClients(Effort effort);
std::vector<Row> MeasureStart(Effort effort);
std::vector<Row> MeasureComponents(Effort effort);
std::vector<Row> MeasureLoad(Effort effort);
std::vector<Row> MeasureIdle(Effort effort);
std::vector<Row> MeasureLog(Effort effort);
std::vector<Row> MeasureNotifications(Effort effort);

/// One remote call, for scripts: "p50_us p99_us mean_us calls_per_s".
std::string MeasureRemoteCallLine(Effort effort);

/// What this executable does as a measured process, until its input ends.
using Arguments = std::vector<std::string>;
void ServeRawPingPong(const Arguments& arguments);
void ServeCalls(const Arguments& arguments);
void RunBroker(const Arguments& arguments);
void RunSubscriber(const Arguments& arguments);

} // namespace Vela::Benchmarks
