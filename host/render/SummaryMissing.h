#ifndef KYR_HOST_RENDER_SUMMARYMISSING_H
#define KYR_HOST_RENDER_SUMMARYMISSING_H

#include <string>
#include <vector>

class TContainer;

/// What is missing of the classes and why, a text for each cause, with what can be done about it.
std::vector<std::string> MissingTexts(const TContainer& container, const std::vector<std::string>& classes);

#endif
