#include "quillon/organisation/internal/QNItemCount.h"

#include <gtest/gtest.h>

#include "quillon/platform/environment/QNEnvironment.h"
#include "quillon/platform/text/QNLocalization.h"

namespace quillon {
namespace {

struct CountCase {
  const char* locale;
  std::uint64_t count;
  const char* text;
};
class QNItemCount : public testing::TestWithParam<CountCase> {
 protected:
  QNItemCount() : _locale(GetParam().locale), _before(texts().language()) {
    texts().setLanguage(GetParam().locale);
  }
  ~QNItemCount() override { texts().setLanguage(_before); }
  static QNLocalization& texts() { return QNLocalization::sharedLocalization(); }

 private:
  QNScopedLocale _locale;
  std::string _before;
};

TEST_P(QNItemCount, IsToldInTheUsersLanguage) {
  EXPECT_EQ(localizedItemCount(GetParam().count), GetParam().text);
}

INSTANTIATE_TEST_SUITE_P(
    Languages, QNItemCount,
    testing::Values(CountCase{"en-US", 0, "empty"}, CountCase{"en-US", 1, "1 item"},
                    CountCase{"en-US", 2, "2 items"}, CountCase{"en-US", 1234, "1,234 items"},
                    CountCase{"de-DE", 0, "leer"}, CountCase{"de-DE", 1, "1 Eintrag"},
                    CountCase{"de-DE", 1234, "1.234 Einträge"}, CountCase{"fr-FR", 0, "vide"},
                    CountCase{"fr-FR", 1234, "1\u202F234 éléments"},
                    CountCase{"es-ES", 2, "2 elementos"}, CountCase{"pt-BR", 2, "2 itens"},
                    CountCase{"ja-JP", 2, "2 個のアイテム"},
                    CountCase{"ar-EG", 12, "عدد العناصر: ١٢"}));

}  // namespace
}  // namespace quillon
