// The symbol of a kind of finding.
import QtQuick
import Marlune

Icon {
    required property string kind

    readonly property var symbolOf: ({
        "Okładki": "photo",
        "Tagi": "tag",
        "Pliki": "doc.badge.ellipsis",
        "Duplikaty": "doc.on.doc"
    })

    symbol: symbolOf[kind] ?? ""
    color: Tokens.color.textMuted
}
