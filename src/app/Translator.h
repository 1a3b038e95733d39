#pragma once

class QTranslator;

namespace recordconverter::app {

struct EntryContext;

/// Loads "tarn-windows-client.<locale>.qm" from the "translations" folder of the dynamic
/// dependencies and fills `context.localizationStrings` when it is empty. Never null, never
/// deleted; without a file for the locale it translates nothing.
QTranslator* loadTranslator(EntryContext& context);

} // namespace recordconverter::app
