#pragma once

class QCoreApplication;

/// Shows the program in the user's language where it ships in it, and what the toolkit itself says where that
/// is installed in it; else in English. To be called before anything is shown. The texts of the two status
/// lines are the same in every language.
void installTranslations(QCoreApplication &application);
