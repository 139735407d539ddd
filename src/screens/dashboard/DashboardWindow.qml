import QtQuick
import QtQuick.Templates as T
import QtQuick.Window
import Sayvane

/// The sections on the left, the chosen one's screen on the right. The screens exist while the window is
/// shown, each from its first visit on; where each was scrolled to is kept.
Window {
    id: window

    required property DashboardView dashboard
    required property DashboardNavigation navigation
    required property DictationListView dictations
    required property InsightsView insights
    required property DictionaryView dictionary
    required property LabsView labs
    required property SettingsForms settings

    title: "Sayvane"
    width: 960
    height: 640
    minimumWidth: 760
    minimumHeight: 520
    color: Theme.window

    T.SplitView {
        anchors.fill: parent
        handle: Item {
            implicitWidth: 1

            Divider {
                anchors.horizontalCenter: parent.horizontalCenter
                height: parent.height
            }
            containmentMask: Item {
                x: -4
                width: 9
                height: window.height
            }
        }

        Sidebar {
            id: sidebar
            T.SplitView.minimumWidth: compact ? implicitWidth : 180
            T.SplitView.preferredWidth: compact ? implicitWidth : 200
            T.SplitView.maximumWidth: compact ? implicitWidth : 240
            compact: window.width < 600
            dashboard: window.dashboard
            navigation: window.navigation
            screen: screens.current
        }
        Item {
            T.SplitView.fillWidth: true

            CredentialBanner {
                id: banner
                width: parent.width
                dashboard: window.dashboard
            }
            Item {
                id: screens

                property Item current: null

                anchors.top: banner.visible ? banner.bottom : parent.top
                anchors.bottom: parent.bottom
                width: parent.width

                Screen {
                    section: "dictation"
                    sourceComponent: DictationListPage { model: window.dictations }
                }
                Screen {
                    section: "insights"
                    sourceComponent: InsightsPage { model: window.insights }
                }
                Screen {
                    section: "dictionary"
                    sourceComponent: DictionaryPage { model: window.dictionary }
                }
                Screen {
                    section: "labs"
                    sourceComponent: LabsPage { model: window.labs }
                }
                Screen {
                    section: "settings"
                    sourceComponent: SettingsScreen { forms: window.settings }
                }
            }
        }
    }

    Shortcut {
        sequences: [StandardKey.Close]
        onActivated: window.close()
    }

    component Screen: Loader {
        id: screen

        required property string section
        readonly property bool current: window.navigation.section === section
        property bool visited: false
        property var place: null

        anchors.fill: parent
        visible: current
        focus: current
        active: window.dashboard.shown && (current || visited)
        onCurrentChanged: visited = visited || current
        onLoaded: if (place) Qt.callLater(item.resume, place)

        Binding {
            target: screens
            property: "current"
            value: screen.item
            when: screen.current
            restoreMode: Binding.RestoreNone
        }
        Connections {
            target: window.dashboard

            function onClosing() {
                screen.place = screen.item ? screen.item.whereabouts() : screen.place;
            }
        }
    }
}
