#ifndef KYR_PLUGINS_SOFTWARE_REPOSITORYFILES_H
#define KYR_PLUGINS_SOFTWARE_REPOSITORYFILES_H

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "SoftwareFacts.h"

using TRepositories = std::vector<TRepository>;

/// More than any machine has in one file; the rest of it is not read.
constexpr size_t kMostRepositories = 1000;

// The files in which package managers are told where packages come from.

/// Of apt, with a line for each: "deb [arch=amd64] http://deb.example.org/debian stable main".
TRepositories ParseAptLines(std::string_view text, const std::string& file);
/// Of apt, with a paragraph of fields for several.
TRepositories ParseAptParagraphs(std::string_view text, const std::string& file);
/// Of yum, dnf and zypper, with a section for each.
TRepositories ParseYumRepositories(std::string_view text, const std::string& file);
/// Of apk, with an address in each line.
TRepositories ParseApkRepositories(std::string_view text, const std::string& file);
/// Of pacman, with a section for each. The function gives the text of a file that a section includes.
TRepositories ParsePacmanRepositories(std::string_view text, const std::string& file,
                                      const std::function<std::string(const std::string&)>& include);

// What the readers of these files have in common.

/// Yes or no in one of the words that package managers take for it.
std::optional<bool> ParseFlag(std::string_view text);
TRepository MakeRepository(EPackageFormat format, const std::string& name, const std::string& file);
/// The address without what lets somebody in: user and password, and parameters such as "token=".
std::string WithoutSecrets(std::string_view url);

#endif
