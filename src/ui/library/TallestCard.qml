// A card with a line of each kind, never shown: it tells how tall a card can be.
AlbumCard {
    visible: false
    index: -1
    albumTitle: " "
    artist: " "
    countAndSize: " "
    format: " "
    highResolution: false
    discs: " "
    chosen: false
    marked: false
    current: false
    playing: false
    cover: ""
    deviceSide: false
}
