// The languages, each in its own words, and the system's choice.
import QtQuick
import QtQuick.Templates as T
import Marlune

Menu {
    id: root

    component Choice: T.Action {
        required property string code

        checkable: true
        checked: Language.choice === code
        onTriggered: Language.choice = code
    }

    title: L10n.text("&Język")

    T.ActionGroup {
        id: languages
    }
    Choice {
        T.ActionGroup.group: languages
        text: "Polski"
        code: "pl"
    }
    Choice {
        T.ActionGroup.group: languages
        text: "English"
        code: "en"
    }
    Choice {
        T.ActionGroup.group: languages
        text: L10n.text("Zgodnie z systemem")
        code: "system"
    }
}
