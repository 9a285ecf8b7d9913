#include "app/installed/InstalledModel.h"

#include "app/lists/QtConversions.h"

#include <QLocale>
#include <algorithm>
#include <filesystem>

namespace tovi {
namespace {

constexpr const char* orientation = "osd"; // no language: it tells which way up a page is
constexpr const char* equations = "equ";
constexpr std::size_t mostUsedBesidesEnglish = 6; // by the text recognition, in byte order

/// Throws `std::filesystem::filesystem_error`.
std::vector<InstalledModel::Language> languagesIn(const std::string& folder) {
    std::vector<InstalledModel::Language> languages;
    for (const auto& entry : std::filesystem::directory_iterator(folder)) {
        const std::filesystem::path& path = entry.path();
        std::error_code vanished;
        const auto size = entry.file_size(vanished);
        if (path.extension() != ".traineddata" || vanished) continue;
        languages.push_back({path.stem().string(), static_cast<std::int64_t>(size), false});
    }
    std::sort(languages.begin(), languages.end(),
              [](const auto& left, const auto& right) { return left.code < right.code; });
    std::size_t others = 0;
    for (InstalledModel::Language& language : languages) {
        if (language.code == equations) continue;
        language.isUsed = language.code == "eng" || language.code == orientation ||
                          others++ < mostUsedBesidesEnglish;
    }
    return languages;
}

/// "German" for "deu", "Chinese (chi_sim)" for what has variants.
QString nameOf(const InstalledModel::Language& language) {
    if (language.code == orientation) return InstalledModel::tr("Direction of a page");
    if (language.code == equations) return InstalledModel::tr("Equations");
    const QString code = toQt(language.code);
    const QString base = code.section(u'_', 0, 0);
    const QLocale::Language known = QLocale::codeToLanguage(base, QLocale::ISO639Alpha3);
    if (known == QLocale::AnyLanguage) return code;
    const QString name = QLocale::languageToString(known);
    return base == code ? name : name + QStringLiteral(" (%1)").arg(code);
}

} // namespace

InstalledModel::InstalledModel(Executor& executor, std::string languageFolder,
                               AskConfinement askConfinement)
    : executor_(executor),
      languageFolder_(std::move(languageFolder)),
      askConfinement_(std::move(askConfinement)),
      languages_(
          [](const Language& language) { return language.code; },
          {{"id", [](const Language& language) { return toQt(language.code); }},
           {"name", nameOf},
           {"bytes",
            [](const Language& language) { return QVariant::fromValue<qint64>(language.bytes); }},
           {"isUsed", [](const Language& language) { return language.isUsed; }}}) {}

QString InstalledModel::languageFolder() const {
    return toQt(languageFolder_);
}

void InstalledModel::refresh() {
    isLoading_ = true;
    Q_EMIT changed();
    runLatest(
        executor_, this, languagesGeneration_,
        [folder = languageFolder_](const std::stop_token&) { return languagesIn(folder); },
        [this](Outcome<std::vector<Language>> outcome) {
            hasLoaded_ = true;
            error_ = toQt(outcome.error);
            languages_.replace(std::move(outcome.value).value_or(std::vector<Language>()));
            Q_EMIT changed();
        });
    runLatest(executor_, this, confinementGeneration_, askConfinement_,
              [this](const Outcome<Confinement>& outcome) {
                  isLoading_ = false;
                  isConfined_ = outcome && outcome.value->isComplete;
                  confinementError_ = toQt(outcome.error);
                  confinement_.clear();
                  if (outcome) {
                      for (const std::string& sentence : outcome.value->sentences)
                          confinement_.append(toQt(sentence));
                  }
                  Q_EMIT changed();
              });
}

} // namespace tovi
