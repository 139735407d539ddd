#pragma once

#include <QObject>

class MainMenu;
class QKeyEvent;

/// Carries the main menu's commands out in whichever window of ours has the keyboard: those of editing in
/// its focused field, as far as it knows them.
class MainMenuKeys final : public QObject
{
    Q_OBJECT
public:
    explicit MainMenuKeys(const MainMenu &menu);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    bool handle(const QKeyEvent &event);

    const MainMenu &m_menu;
};
