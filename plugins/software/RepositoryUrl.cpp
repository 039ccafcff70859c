#include <algorithm>
#include <iterator>

#include "RepositoryFiles.h"
#include "Text.h"

namespace {

/// Words in the name of a parameter that make its value a secret.
constexpr std::string_view kSecretWords[] = {"token", "pass", "secret", "key", "auth", "sig", "credential", "user"};

bool IsSecret(std::string_view parameter) {
    const std::string name = LowerCase(parameter.substr(0, parameter.find('=')));
    return std::any_of(std::begin(kSecretWords), std::end(kSecretWords),
                       [&name](std::string_view word) { return name.find(word) != std::string::npos; });
}

// Where the host begins, behind user and password. A password with a slash in it is no part of a proper address, yet
// people write it: "https://user:a/b@host".
size_t FindHost(std::string_view url) {
    const size_t scheme = url.find("://");
    const size_t start = scheme == std::string_view::npos ? 0 : scheme + 3;
    const std::string_view authority = url.substr(start, url.find_first_of("/?#", start) - start);
    if (const size_t at = authority.rfind('@'); at != std::string_view::npos) return start + at + 1;
    const size_t colon = authority.find(':'), at = url.rfind('@');
    const bool hasUser = scheme != std::string_view::npos && colon != std::string_view::npos && authority[0] != '[' &&
                         !ParseNumber<uint16_t>(authority.substr(colon + 1));
    return hasUser && at != std::string_view::npos && at > start ? at + 1 : start;
}

// The parameters behind the question mark, without those that are secret.
std::string PublicParameters(std::string_view parameters) {
    std::string kept;
    for (const std::string_view parameter : Split(parameters, '&'))
        if (!IsSecret(parameter)) kept += (kept.empty() ? '?' : '&') + std::string(parameter);
    return kept;
}

}  // namespace

std::string WithoutSecrets(std::string_view url) {
    const size_t scheme = url.find("://"), start = scheme == std::string_view::npos ? 0 : scheme + 3;
    std::string kept = std::string(url.substr(0, start)) + std::string(url.substr(FindHost(url)));
    const size_t question = kept.find('?');
    if (question == std::string::npos) return kept;
    return kept.substr(0, question) + PublicParameters(std::string_view(kept).substr(question + 1));
}
