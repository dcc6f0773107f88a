#include "KoviKit/evidence/V6WriterTransfer.h"

#include "KoviKit/foundation/CanonicalJsonWriter.h"
#include "KoviKit/foundation/Trap.h"

namespace kovi {

Sha256Digest V6WriterTransferPlan::clientDataHash() const {
  CanonicalJsonWriter writer;
  // Strings and one integer: a refusal is a programming error.
  if (auto written = writeCanonicalJson(writer, encodeRecord(*this), "plan"); !written) trap(written.error());
  std::string text(kWriterTransferDomain);
  text += '\n';
  text += writer.text();
  return sha256(text);
}

}  // namespace kovi
