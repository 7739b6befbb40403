// The window: menus above, sections at the left, the chosen page with the transfer bar, the device at the right.
import QtQuick
import QtQuick.Layouts
import QtQuick.Templates as T
import Marlune

T.ApplicationWindow {
    id: root

    required property MarluneModel model
    required property ShellPresenter shell
    required property LibraryPresenter library
    required property QualityPresenter quality
    required property PlaybackPresenter playback
    required property DesktopPanels panels

    width: Math.min(1260, Screen.desktopAvailableWidth)
    height: Math.min(820, Screen.desktopAvailableHeight)
    minimumWidth: 1050
    minimumHeight: 690
    visible: true
    title: L10n.text("Marlune")
    color: Tokens.color.content
    font: Tokens.type.body
    onClosing: close => close.accepted = root.shell.requestClose()

    Connections {
        target: root.shell
        function onMayCloseNow() {
            root.close();
        }
    }

    ColumnLayout {
        anchors.fill: parent
        spacing: 0

        TopBar {
            Layout.fillWidth: true
            model: root.model
            shell: root.shell
            onQuit: root.close()
        }
        Divider {
            Layout.fillWidth: true
        }
        RowLayout {
            spacing: 0

            Sidebar {
                Layout.fillHeight: true
                Layout.preferredWidth: implicitWidth
                sections: root.shell.sections
            }
            Divider {
                Layout.fillHeight: true
                vertical: true
            }
            ColumnLayout {
                spacing: 0

                LibraryPage {
                    Layout.fillWidth: true
                    Layout.fillHeight: true
                    visible: root.shell.musicShown
                    model: root.model
                    library: root.library
                }
                QualityPage {
                    Layout.fillWidth: true
                    Layout.fillHeight: true
                    visible: root.shell.qualityShown
                    model: root.model
                    quality: root.quality
                }
                GuidePage {
                    Layout.fillWidth: true
                    Layout.fillHeight: true
                    visible: root.shell.guideShown
                }
                EmptyState {
                    Layout.fillWidth: true
                    Layout.fillHeight: true
                    visible: !root.shell.musicShown && !root.shell.qualityShown && !root.shell.guideShown
                    symbol: root.shell.sectionSymbol
                    title: L10n.text(root.model.section)
                    detail: L10n.text(root.shell.sectionPurpose)
                }
                Divider {
                    Layout.fillWidth: true
                }
                MiniPlayer {
                    Layout.fillWidth: true
                    playback: root.playback
                }
                ClosingNotice {
                    Layout.fillWidth: true
                    visible: root.shell.closing
                    onStay: root.shell.stayOpen()
                }
                TransferBar {
                    Layout.fillWidth: true
                    model: root.model
                    shell: root.shell
                }
            }
            Divider {
                Layout.fillHeight: true
                visible: root.shell.inspectorShown
                vertical: true
            }
            Inspector {
                Layout.fillHeight: true
                Layout.preferredWidth: 285
                visible: root.shell.inspectorShown
                model: root.model
                shell: root.shell
            }
        }
    }

    AlertDialog {
        objectName: "alertDialog"
        message: L10n.text(root.model.alert)
        onDismissed: root.model.dismissAlert()
    }
    PanelHost {
        panels: root.panels
    }
    Tooltip {}
}
