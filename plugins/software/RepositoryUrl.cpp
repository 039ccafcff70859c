#include <algorithm>
#include <iterator>

#include "RepositoryFiles.h"
#include "Text.h"

namespace {

/// Words in the name of a parameter that make its value a secret.
constexpr std::string_view kSecretWords[] = {"token", "pass", "secret", "key", "auth", "sig", "credential", "user"};

bool HasSecretName(std::string_view parameter) {
    const std::string name = LowerCase(parameter.substr(0, parameter.find('=')));
    return std::any_of(std::begin(kSecretWords), std::end(kSecretWords),
                       [&name](std::string_view word) { return name.find(word) != std::string::npos; });
}

// Some separate parameters by semicolons. What has no name is the token of a subscription: "?AbCd0123".
bool IsSecret(std::string_view parameter) {
    if (parameter.find('=') == std::string_view::npos) return true;
    const std::vector<std::string_view> parts = Split(parameter, ';');
    return std::any_of(parts.begin(), parts.end(), HasSecretName);
}

// Where user and host begin: behind "https://". With one slash too few or without the scheme, too.
size_t FindAuthority(std::string_view url) {
    const size_t colon = url.find(":/"), slashes = colon == std::string_view::npos ? 0 : colon + 1;
    return std::min(url.find_first_not_of('/', slashes), url.size());
}

// Where the host begins, behind user and password. A password with a slash in it is no part of a proper address, yet
// people write it: "https://user:a/b@host". So the last "@" counts, even if it may be one of the path.
size_t FindHost(std::string_view url) {
    const size_t start = FindAuthority(url), at = url.rfind('@');
    if (at == std::string_view::npos || at < start) return start;
    const std::string_view authority = url.substr(start, url.find_first_of("/?#", start) - start);
    const size_t colon = authority.find(':');
    const bool hasPassword = start > 0 && colon != std::string_view::npos && authority[0] != '[' &&
                             !ParseNumber<uint16_t>(authority.substr(colon + 1));
    return hasPassword || authority.find('@') != std::string_view::npos ? at + 1 : start;
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
    std::string kept = std::string(url.substr(0, FindAuthority(url))) + std::string(url.substr(FindHost(url)));
    kept.erase(std::min(kept.find('#'), kept.size()));
    const size_t question = kept.find('?');
    if (question == std::string::npos) return kept;
    return kept.substr(0, question) + PublicParameters(std::string_view(kept).substr(question + 1));
}
