#pragma once
// 누벨라: the main window. It holds the menu bar, the three status panels and the working
// screens as children; it has no logic of its own beyond its load.

#include <QHash>
#include <QMainWindow>
#include <QPointer>

class QAction;
class QLabel;
class QMdiArea;
class QMenu;

namespace nb {

class Nubella : public QMainWindow {
    Q_OBJECT
public:
    explicit Nubella(QWidget* parent = nullptr);
    ~Nubella() override;

    // The load: background, date panel, title, decimals, StartProgram, splash. False when the
    // load stopped (a decimal setting that is not a number); the program then ends.
    bool load(bool showSplash = true);

    QAction* menuAction(const QString& control) const { return m_actions.value(control); }
    QMdiArea* mdiArea() const { return m_mdi; }
    QLabel* panel(int index) const { return m_panels[index]; }
    // The open child screen of a menu entry, or null.
    QWidget* childScreen(const QString& control) const;
    // Enables the entries that have a screen registered (call after registering).
    void refreshMenuState();
    // Opens the screen of a menu entry as the menu does.
    void openEntry(const QString& control);

    // Ends the process at once: no questions, nothing closed or saved.
    static void endProgram();

private:
    void buildMenus();
    void buildStatusPanels();
    QAction* addItem(QMenu* menu, const QString& control, const QString& caption);
    QAction* addBarAction(const QString& control, const QString& caption);
    void SetMainBackground();
    void showChild(const QString& control);
    QWidget* loadChild(const QString& control, bool afresh);
    void askHomePage();
    void showConvertBox();
    void showAbout();

    QMdiArea* m_mdi = nullptr;
    QLabel* m_panels[3] = {};
    QHash<QString, QAction*> m_actions;
    QHash<QString, QPointer<QWidget>> m_children;
    QPointer<QWidget> m_about;
};

} // namespace nb
