# Draws docs/frames-saved.svg. Run in the project's root folder:
#
#   build/bench/bench/frames_saved --csv >build/frames-saved.csv
#   gnuplot -c bench/frames_saved.gnuplot build/frames-saved.csv docs/frames-saved.svg

if (ARGC != 2) {
    print "usage: gnuplot -c bench/frames_saved.gnuplot TABLE.csv PICTURE.svg"
    exit status 1
}
table = ARG1
set output ARG2
set terminal svg size 900,600 font "sans-serif,12" background "#ffffff"

set datafile separator comma
set datafile missing NaN
array sets[3] = ["dense", "scattered", "mixed"]
array places[3] = ["blocks of data", "small groups, gaps", "machine units"]
array plans[4] = ["single", "touching", "driver", "best"]
array titles[4] = ["one request per variable", "adjacent ones merged", "the driver", "best possible"]
wire(set_name, value) = strcol(1) eq set_name && strcol(3) eq "wire-19200" ? value : NaN

set style line 1 linecolor rgb "#909090" linewidth 2 pointtype 9 pointsize 0.7
set style line 2 linecolor rgb "#d08000" linewidth 2 pointtype 5 pointsize 0.6
set style line 3 linecolor rgb "#0060b0" linewidth 3 pointtype 7 pointsize 0.6
set style line 4 linecolor rgb "#009e73" linewidth 2 dashtype 2 pointtype 0

set border 3 linecolor rgb "#606060"
set tics nomirror scale 0.5
set grid ytics linecolor rgb "#dddddd" linetype 1
set logscale xy
unset key
unset mxtics
unset mytics
set xrange [80:12500]

left(i) = 0.065 + (i - 1) * 0.32
set multiplot

# The texts of the whole picture are drawn with its first plot. gnuplot's own key does not fit, because
# it is laid out within one plot.
set label 1 "Wire time of one cycle at 19,200 baud" at screen 0.5, screen 0.965 center font ",15"
set label 2 "at most 125 registers per request, without the turnaround time of the slave" \
    at screen 0.5, screen 0.925 center textcolor rgb "#505050"
array keys[4] = [0.06, 0.33, 0.59, 0.76]
do for [p = 1:4] {
    set arrow p from screen keys[p], screen 0.875 to screen keys[p] + 0.04, screen 0.875 \
        nohead linestyle p
    set label 10 + p titles[p] at screen keys[p] + 0.05, screen 0.875 left
    set label 20 + p "" at screen keys[p] + 0.02, screen 0.875 point linestyle p
}
set label 3 "seconds" at screen 0.012, screen 0.815 left
set label 4 "multiple of the best possible" at screen 0.012, screen 0.44 left
set label 5 "number of variables" at screen 0.5, screen 0.025 center
set yrange [0.1:200]
set ytics (0.1, 1, 10, 100)
set format x ""
set xtics (100, 300, 1000, 3000, 10000)
set tmargin at screen 0.78
set bmargin at screen 0.49
do for [i = 1:3] {
    set lmargin at screen left(i)
    set rmargin at screen left(i) + 0.265
    set title sprintf("%s: %s", sets[i], places[i]) offset 0,-0.5
    plot for [p = 1:4] table using 2:(wire(sets[i], column(plans[p]) / 1000)) \
        with linespoints linestyle p
    unset label
    unset arrow
}

unset title
set yrange [0.9:12]
set ytics (1, 1.5, 2, 3, 5, 10)
set xtics ("100" 100, "300" 300, "1,000" 1000, "3,000" 3000, "10,000" 10000)
set tmargin at screen 0.41
set bmargin at screen 0.10
do for [i = 1:3] {
    set lmargin at screen left(i)
    set rmargin at screen left(i) + 0.265
    plot for [p = 1:4] table using 2:(wire(sets[i], column(plans[p]) / column("best"))) \
        with linespoints linestyle p
}
unset multiplot
