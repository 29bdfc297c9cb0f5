#include "model/callbacks.h"

namespace QB::Callback {

void (*runOperationOnMainThread)(std::function<void()>) = nullptr;
void (*runOperationOnDispatchedThread)(std::function<void()>) = nullptr;
bool (*isDarkTheme)() = nullptr;
void (*showError)(std::string) = nullptr;
std::string (*formatIdentifier)(const std::string&, DatabaseType, int) = nullptr;

}  // namespace QB::Callback
