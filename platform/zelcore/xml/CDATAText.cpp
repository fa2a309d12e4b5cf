#include <zelcore/xml/CDATAText.h>

namespace zelcore::xml {

std::string_view CDATAText::Normalise(std::string_view piece) {
  if (!mEndsInCR && piece.find('\r') == std::string_view::npos) return piece;
  mNormalised.clear();
  for (const char c : piece) {
    const bool isSecondOfCRLF = c == '\n' && mEndsInCR;
    if (!isSecondOfCRLF) mNormalised.push_back(c == '\r' ? '\n' : c);
    mEndsInCR = c == '\r';
  }
  return mNormalised;
}

}  // namespace zelcore::xml
