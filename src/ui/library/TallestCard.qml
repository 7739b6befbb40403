// A card with a line of each kind, never shown: it tells how tall a card can be.
AlbumCard {
    visible: false
    albumTitle: " "
    artist: " "
    countAndSize: " "
    format: " "
    highResolution: false
    discs: " "
    selected: false
    playing: false
    cover: ""
    deviceSide: false
}
