#include <algorithm>
#include <span>

#include <surveydata/gnss/gps_time.h>

#include <output/gps_time.h>
#include <record/record_findings.h>

namespace Tool {
namespace {

void TakeMeasurement(const SDI::GPSRecordC& record, RecordFindings& found) {
  const std::span<const std::uint8_t> frame = record.GetBytes();
  if (found.measurements++ == 0) {
    found.firstFrame.assign(frame.begin(), frame.end());
    found.firstFrameAt = record.GetOffset();
  } else if (std::ranges::equal(frame, found.lastFrame)) {
    found.repeated.Add(record.GetOffset());
  }
  found.lastFrame.assign(frame.begin(), frame.end());

  const Vorlin::TimeC timeA = record.GetMeasurement().GetTimeA();
  if (timeA.timeOfWeek < 0 || timeA.timeOfWeek >= SDI::kMillisecondsPerWeek) return;
  const std::int64_t time = GpsMilliseconds(timeA);
  if (!found.firstTime) {
    found.firstTime = time;
    found.firstTimeAt = record.GetOffset();
  } else if (time < *found.lastTime) {
    found.timesBack.Add(record.GetOffset());
  }
  found.lastTime = time;
}

}  // namespace

bool RecordFindings::IsHealthy() const {
  return measurements > 0 && gaps.count + badBlocks.count + timesBack.count + repeated.count == 0;
}

void RecordFindings::AddCounts(const RecordFindings& other) {
  measurements += other.measurements;
  others += other.others;
  gapBytes += other.gapBytes;
  gaps.Add(other.gaps);
  damagedHeaders.Add(other.damagedHeaders);
  overlappingHeaders.Add(other.overlappingHeaders);
  badBlocks.Add(other.badBlocks);
  timesBack.Add(other.timesBack);
  repeated.Add(other.repeated);
}

void RecordFindings::Join(const RecordFindings& next) {
  const bool isOneGap = endsInGap && next.beginsInGap;
  const bool isFirst = measurements == 0;
  if (!isFirst && next.measurements > 0 && next.firstFrame == lastFrame) {
    repeated.Add(next.firstFrameAt);
  }
  if (lastTime && next.firstTime && *next.firstTime < *lastTime) timesBack.Add(next.firstTimeAt);
  AddCounts(next);
  if (isOneGap) --gaps.count;
  endsInGap = next.endsInGap;
  if (isFirst) {
    firstFrame = next.firstFrame;
    firstFrameAt = next.firstFrameAt;
  }
  if (next.measurements > 0) lastFrame = next.lastFrame;
  if (!firstTime) {
    firstTime = next.firstTime;
    firstTimeAt = next.firstTimeAt;
  }
  if (next.lastTime) lastTime = next.lastTime;
}

RecordFindings FindFaults(RecordWalkC& walk, const RecordFilter& filter) {
  RecordFindings found;
  walk.SetReportDamaged([&](const SDI::GPSDamagedHeader& header) {
    const bool isOverlap = header.damage == SDI::GPSRecordDamage::kRunsIntoNextRecord;
    (isOverlap ? found.overlappingHeaders : found.damagedHeaders).Add(header.offset);
  });
  RecordSieveC sieve(filter);
  const RecordPiece& piece = walk.GetPiece();
  SDI::GPSRecordEntry entry;
  while (walk.Next(entry)) {
    if (entry.isGap) {
      found.gaps.Add(entry.offset);
      found.gapBytes += entry.size;
      found.beginsInGap |= !piece.isFirst && entry.offset == piece.stretch.begin;
      found.endsInGap = !piece.isLast && entry.offset + entry.size == piece.stretch.end;
    } else if (!entry.IsMeasurement()) {
      ++found.others;
    } else if (!walk.GetRecord().IsDone()) {
      found.badBlocks.Add(entry.offset);
    } else if (filter.TakesAll() || sieve.Takes(Decode(entry.offset, walk.GetBytes()))) {
      TakeMeasurement(walk.GetRecord(), found);
    }
  }
  walk.SetReportDamaged(nullptr);
  return found;
}

}  // namespace Tool
