#include "KoviKit/evidence/V6WalkingBucketEntry.h"

namespace kovi {

void V6WalkingBucketEntry::write(CanonicalJsonWriter& writer) const {
  writer.beginObject();
  writer.key("day").value(day);
  writer.key("expectedRevision").value(expectedRevision);
  writer.key("observation");
  observation.write(writer);
  writer.endObject();
}

std::string V6WalkingBucketEntry::json() const {
  CanonicalJsonWriter writer;
  write(writer);
  return writer.take();
}

}  // namespace kovi
