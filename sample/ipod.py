"""The sample iPod: what a 5th generation iPod's disk looks like with Rockbox on it."""

import os

from canvas import Canvas, mix

_FEATURES = (
    "accessory_supply:albumart:alarm:backlight_brightness:backlight_fade_int_setting:charging:"
    "crossfade:dircache:disk_storage:hold_button:hotkey:lcd_bitmap:lcd_color:lcd_non-mono:"
    "lcd_sleep:lineout_poweroff:multivolume:pitchscreen:quickscreen:recording:recording_mic:rtc:"
    "scrollwheel:swcodec:tagcache:tc_ramcache:usb_power:usbstack:usb_hid:wheel_acceleration"
)

_INFO = f"""Target: ipodvideo
Target id: 15
Target define: -DIPOD_VIDEO
Memory: 64
CPU: arm
Manufacturer: ipod
Version: 3.15
Binary: rockbox.ipod
Binary size: 790468
Actual size: 790460
RAM usage: 2087452
Features: {_FEATURES}
gcc: arm-elf-eabi-gcc (GCC) 4.4.4
ld: GNU ld (GNU Binutils) 2.20.1.20100303
Host gcc: gcc (Debian 8.3.0-6) 8.3.0
Host system: Linux
"""

# name -> (backdrop's top, bottom, accent, text, selection), file name of the font
_THEMES = {
    "Amberline": (("#14110f", "#3a2a1a", "#f5b642", "#fff4e0", "#7a4f1d"), "15-Adobe-Helvetica.fnt"),
    "Glacier": (("#eaf4f8", "#a9cfe0", "#1f6f8b", "#12323f", "#ffffff"), "16-Adobe-Helvetica.fnt"),
}


def _backdrop(colours, seed):
    """320 x 240 with a few soft waves along the lower edge."""
    top, bottom, accent, _, _ = colours
    c = Canvas(320, 3, seed)
    c.fill(c.linear([top, mix(top, bottom, 0.6), bottom], 90))
    c.glow(780, 160, 520, mix(bottom, accent, 0.5), 0.35)
    for i in range(4):
        mask = c.poly_mask(c.below(c.swell(560 + 60 * i, 34, period=(380, 900))))
        c.paint(mask, mix(bottom, accent, 0.14 + 0.12 * i), 0.45)
    return c.finish(grain=2).crop((0, 0, 320, 240))


def _slider(colours):
    """The filled part of the progress bar, 300 x 8."""
    c = Canvas(300, 1)
    c.fill(c.linear([mix(colours[2], colours[0], 0.25), colours[2]], 0))
    return c.finish(grain=0).crop((0, 0, 300, 8))


def _cfg(name, colours, font):
    plain = [colour.lstrip("#").upper() for colour in colours]
    return f"""# {name}, a theme for 320x240 screens
wps: /.rockbox/wps/{name}.wps
sbs: /.rockbox/wps/{name}.sbs
backdrop: /.rockbox/backdrops/{name}.320x240x24.bmp
font: /.rockbox/fonts/{font}
foreground color: {plain[3]}
background color: {plain[0]}
line selector start color: {plain[2]}
line selector end color: {plain[4]}
line selector text color: {plain[3]}
selector type: bar (gradient)
statusbar: off
scrollbar: right
show icons: on
viewers iconset: -
iconset: -
"""


def _wps(name, colours):
    text, accent = colours[3].lstrip("#").upper(), colours[2].lstrip("#").upper()
    return f"""# {name}: what plays now
%wd
%X({name}-backdrop.bmp)
%xl(bar,{name}-slider.bmp,0,0)
# the cover, or the lines below take its place
%Cl(12,44,130,130,c,c)
%?C<%Vd(cover)%Vd(beside)|%Vd(wide)>
%Vl(cover,0,0,-,-,-)
%Cd
%Vl(beside,154,54,158,120,1)%Vf({text})
%s%al%?it<%it|%fn>
%s%al%?ia<%ia|%?d(2)<%d(2)|-->>
%s%al%?id<%id|%?d(1)<%d(1)|-->>
%s%al%?iy<%iy>
%Vl(wide,10,54,300,120,1)%Vf({text})
%s%ac%?it<%it|%fn>
%s%ac%?ia<%ia|%?d(2)<%d(2)|-->>
%s%ac%?id<%id|%?d(1)<%d(1)|-->>
# time and progress
%V(10,196,300,8,-)
%pb(0,0,300,8,{name}-slider.bmp)
%V(10,210,300,20,1)%Vf({accent})
%al%pc%ac%pp / %pe%ar-%pr
%V(10,10,300,20,1)%Vf({accent})
%al%?mp<Stop|Play|Pause|Forward|Rewind>%ac%?St(repeat)<|All|One|Shuffle|A-B>%ar%bl%%
"""


def _sbs(name, colours):
    accent = colours[2].lstrip("#").upper()
    return f"""# {name}: the bar above every list
%X({name}-backdrop.bmp)
%Vi(-,8,32,304,200,-)
%V(8,6,304,20,-)%Vf({accent})
%s%al%Lt%ar%?bc<+>%bl%%
"""


def _config(theme):
    colours, font = _THEMES[theme]
    settings = _cfg(theme, colours, font).split("\n", 1)[1]
    return (
        "# .cfg file created by rockbox 3.15 - http://www.rockbox.org\n#\n\n"
        "volume: -25\nbass: 2\ntreble: 1\nrepeat: off\nplayback: -\nsort files: alpha\n"
        "show files: supported\nfollow playlist: on\nbacklight timeout: 15\n"
        "battery capacity: 600\nidle poweroff: 10\nmax files in playlist: 10000\n"
        "max files in dir: 1000\ntagcache_ram: quick\ndirectory cache: on\nlang: english\n"
        "start directory: /\nautosave: on\n" + settings
    )


def make(root, playlist):
    """Writes the iPod's own files below root; playlist: paths on the iPod for the one playlist."""

    def write(name, content):
        path = os.path.join(root, name)
        os.makedirs(os.path.dirname(path), exist_ok=True)
        with open(path, "w", encoding="utf-8", newline="\n") as out:
            out.write(content)

    write(".rockbox/rockbox-info.txt", _INFO)
    write(".rockbox/config.cfg", _config("Amberline"))
    for seed, (name, (colours, font)) in enumerate(_THEMES.items(), 1):
        write(f".rockbox/themes/{name}.cfg", _cfg(name, colours, font))
        write(f".rockbox/wps/{name}.wps", _wps(name, colours))
        write(f".rockbox/wps/{name}.sbs", _sbs(name, colours))
        folder = os.path.join(root, ".rockbox/wps", name)
        os.makedirs(folder)
        os.makedirs(os.path.join(root, ".rockbox/backdrops"), exist_ok=True)
        backdrop = _backdrop(colours, seed)
        backdrop.save(os.path.join(folder, f"{name}-backdrop.bmp"))
        _slider(colours).save(os.path.join(folder, f"{name}-slider.bmp"))
        backdrop.save(os.path.join(root, ".rockbox/backdrops", f"{name}.320x240x24.bmp"))
    write("Playlists/Przeprawy.m3u8", "\ufeff" + "".join(f"{line}\n" for line in playlist))
    write("Notes/Instructions.txt", "Notes that you put into this folder can be read on the iPod.\n")
    write(
        "Calendars/Koncerty.ics",
        "BEGIN:VCALENDAR\r\nVERSION:2.0\r\nPRODID:-//sample//EN\r\nBEGIN:VEVENT\r\nUID:1@sample\r\n"
        "DTSTAMP:20240101T000000Z\r\nDTSTART:20240621T180000Z\r\nSUMMARY:Koncert na przystani\r\n"
        "END:VEVENT\r\nEND:VCALENDAR\r\n",
    )
    write("Contacts/sample.vcf", "BEGIN:VCARD\r\nVERSION:3.0\r\nN:Brzask;Lena;;;\r\nFN:Lena Brzask\r\nEND:VCARD\r\n")
    os.makedirs(os.path.join(root, "Recordings"))
