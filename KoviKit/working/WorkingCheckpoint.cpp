#include "KoviKit/working/WorkingCheckpoint.h"


namespace kovi {

void writeCanonicalJson(CanonicalJsonWriter& writer, const WorkingCheckpoint& checkpoint) {
  writer.beginObject();
  writer.key("sessionID").value(checkpoint.sessionID);
  writer.key("deviceID").value(checkpoint.deviceID);
  writer.key("epoch").value(checkpoint.epoch);
  writer.key("sequence").value(checkpoint.sequence);
  writer.key("previousHash").value(checkpoint.previousHash);
  writer.key("at").value(checkpoint.at);
  writer.key("monotonicMS").value(checkpoint.monotonicMS);
  writer.key("segments").beginArray();
  for (const WorkingCheckpoint::Segment& segment : checkpoint.segments) {
    writer.beginObject();
    writer.key("start").value(segment.start);
    writer.key("end").value(segment.end);
    writer.key("kind").value(enumName(segment.kind));
    writer.endObject();
  }
  writer.endArray();
  writer.key("final").value(checkpoint.final);
  writer.endObject();
}

std::string workingCheckpointCanonicalJson(const WorkingCheckpoint& checkpoint) {
  CanonicalJsonWriter writer;
  // Identifiers, a hash and a few numbers, then about 50 bytes a segment.
  writer.reserve(256 + 64 * checkpoint.segments.size());
  writeCanonicalJson(writer, checkpoint);
  return writer.take();
}

Sha256Digest workingCheckpointDigest(const WorkingCheckpoint& checkpoint) {
  return sha256(workingCheckpointCanonicalJson(checkpoint));
}

std::string workingCheckpointHash(const WorkingCheckpoint& checkpoint) {
  return lowercaseHex(workingCheckpointDigest(checkpoint));
}

}  // namespace kovi
