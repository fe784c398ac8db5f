// The representative herself. The origin is the middle of the face, at the height of the nose's root.

const skin = { light: '#f6d3b6', middle: '#edbe9b', shade: '#d99c78', line: '#a8664a' };
const hair = { light: '#6d4632', middle: '#4a2d20', dark: '#301b13' };
const suit = { light: '#34597a', middle: '#234560', dark: '#173148' };

function path(g, ...steps) {
    g.beginPath();
    g.moveTo(...steps[0]);
    for (const step of steps.slice(1)) {
        if (step.length === 2)
            g.lineTo(...step);
        else if (step.length === 4)
            g.quadraticCurveTo(...step);
        else
            g.bezierCurveTo(...step);
    }
}

function gradient(g, x0, y0, x1, y1, ...colours) {
    const made = g.createLinearGradient(x0, y0, x1, y1);
    colours.forEach((colour, index) => made.addColorStop(index / (colours.length - 1), colour));
    return made;
}

function bothSides(g, draw) {
    for (const side of [-1, 1]) {
        g.save();
        g.scale(side, 1);
        draw(side);
        g.restore();
    }
}

function neck(g) {
    path(g, [-46, 70], [-44, 130, -50, 168, -84, 190], [0, 300], [84, 190], [50, 168, 44, 130, 46, 70]);
    g.fillStyle = gradient(g, 0, 96, 0, 240, skin.shade, skin.middle, skin.light);
    g.fill();
}

function jacket(g, breath) {
    bothSides(g, side => {
        path(g, [0, 640], [0, 250], [52, 178 + breath * 0.4], [96, 196, 150, 210 + breath, 192, 232 + breath],
            [238, 256 + breath, 262, 330, 274, 640]);
        g.fillStyle = side < 0 ? gradient(g, 40, 180, 240, 600, suit.light, suit.middle, suit.dark)
            : gradient(g, 40, 180, 240, 600, suit.middle, suit.middle, suit.dark);
        g.fill();
        path(g, [196, 420], [184, 500, 188, 580, 192, 640]); // the sleeve's fold
        g.strokeStyle = 'rgba(8, 24, 38, .35)';
        g.lineWidth = 4;
        g.stroke();
    });
}

function blouse(g, breath) {
    path(g, [-62, 172 + breath * 0.4], [0, 470], [62, 172 + breath * 0.4], [30, 236], [0, 268], [-30, 236]);
    g.fillStyle = gradient(g, 0, 180, 0, 460, '#ffffff', '#e7edf1');
    g.fill();
    bothSides(g, () => {
        path(g, [56, 166 + breath * 0.4], [86, 196], [44, 262], [2, 268]); // collar
        g.closePath();
        g.fillStyle = gradient(g, 0, 180, 90, 260, '#ffffff', '#dbe4ea');
        g.fill();
        path(g, [84, 184 + breath * 0.4], [128, 262], [98, 286], [114, 306], [8, 486], [0, 470], [52, 262]); // lapel
        g.closePath();
        g.fillStyle = gradient(g, 20, 200, 120, 420, '#3d6689', suit.middle);
        g.fill();
        g.strokeStyle = 'rgba(8, 24, 38, .28)';
        g.lineWidth = 2;
        g.stroke();
    });
}

function badge(g) {
    g.fillStyle = '#f7fafb';
    g.beginPath();
    g.roundRect(116, 362, 84, 34, 7);
    g.fill();
    g.fillStyle = '#3b82a8';
    g.beginPath();
    g.arc(134, 379, 8, 0, Math.PI * 2);
    g.fill();
    g.fillStyle = '#9db0bb';
    g.fillRect(150, 371, 38, 5);
    g.fillRect(150, 382, 26, 5);
}

function hairBehind(g) {
    path(g, [0, -158], [-84, -160, -132, -96, -128, -6], [-126, 60, -142, 110, -122, 166], [-96, 196, -40, 178, 0, 150],
        [40, 178, 96, 196, 122, 166], [142, 110, 126, 60, 128, -6], [132, -96, 84, -160, 0, -158]);
    g.fillStyle = gradient(g, -130, -100, 130, 160, hair.middle, hair.dark, hair.dark);
    g.fill();
}

function face(g) {
    bothSides(g, () => { // ears
        g.fillStyle = skin.shade;
        g.beginPath();
        g.ellipse(95, 6, 13, 25, 0.12, 0, Math.PI * 2);
        g.fill();
    });
    path(g, [0, -124], [-62, -124, -98, -84, -97, -22], [-97, 38, -82, 78, -50, 108], [-30, 126, -14, 132, 0, 132],
        [14, 132, 30, 126, 50, 108], [82, 78, 97, 38, 97, -22], [98, -84, 62, -124, 0, -124]);
    g.fillStyle = gradient(g, -96, -90, 104, 120, skin.light, '#f3cbac', skin.middle, '#dfa683');
    g.fill();
    bothSides(g, () => {
        const blush = g.createRadialGradient(56, 46, 3, 56, 46, 34);
        blush.addColorStop(0, 'rgba(226, 116, 96, .30)');
        blush.addColorStop(1, 'rgba(226, 116, 96, 0)');
        g.fillStyle = blush;
        g.fillRect(16, 6, 80, 80);
    });
}

function eyes(g, { lids, gaze, smile }) {
    bothSides(g, side => {
        const open = 1 - lids;
        const [x, y] = [41, -4];
        const up = 13.5 * open;
        const down = 9 * open - smile * 1.6 * open;
        g.save();
        path(g, [x - 21, y + 3], [x - 10, y - up - 1, x + 10, y - up - 3, x + 22, y - 1],
            [x + 11, y + down + 2, x - 9, y + down + 3, x - 21, y + 3]);
        g.fillStyle = '#fdfaf7';
        g.fill();
        g.clip();
        const look = x + gaze * side;
        const iris = g.createRadialGradient(look, y + 2, 1, look, y - 1, 11);
        iris.addColorStop(0, '#8a5a35');
        iris.addColorStop(1, '#472a18');
        g.fillStyle = iris;
        g.beginPath();
        g.arc(look, y - 1, 10.5, 0, Math.PI * 2);
        g.fill();
        g.fillStyle = '#160d08';
        g.beginPath();
        g.arc(look, y - 1, 4.8, 0, Math.PI * 2);
        g.fill();
        g.fillStyle = 'rgba(255, 255, 255, .92)';
        g.beginPath();
        g.arc(look - 3.5 * side, y - 5, 2.8, 0, Math.PI * 2);
        g.fill();
        g.fillStyle = 'rgba(70, 40, 28, .20)'; // the lid's shade
        g.fillRect(x - 24, y - 18, 50, 10);
        g.restore();
        g.lineCap = 'round';
        path(g, [x - 21, y + 3], [x - 10, y - up - 1, x + 10, y - up - 3, x + 22, y - 1], [x + 26, y - 4]);
        g.strokeStyle = '#2a1710';
        g.lineWidth = 3.4;
        g.stroke();
        path(g, [x - 17, y - 13], [x - 6, y - 22, x + 10, y - 23, x + 22, y - 13]); // the fold above
        g.strokeStyle = 'rgba(150, 88, 62, .55)';
        g.lineWidth = 1.8;
        g.stroke();
    });
}

function brows(g, raise) {
    bothSides(g, () => {
        path(g, [17, -33 - raise], [28, -41 - raise, 50, -46 - raise, 68, -33 - raise], [50, -40 - raise, 30, -34 - raise, 18, -27 - raise]);
        g.closePath();
        g.fillStyle = hair.middle;
        g.fill();
    });
}

function nose(g) {
    path(g, [10, 2], [15, 22, 21, 34, 17, 43], [13, 49, 6, 47, 0, 50], [-6, 47, -13, 49, -15, 42]);
    g.strokeStyle = 'rgba(176, 106, 76, .62)';
    g.lineWidth = 2.6;
    g.stroke();
    const shine = g.createRadialGradient(-2, 30, 1, -2, 30, 13);
    shine.addColorStop(0, 'rgba(255, 240, 226, .65)');
    shine.addColorStop(1, 'rgba(255, 240, 226, 0)');
    g.fillStyle = shine;
    g.fillRect(-18, 14, 32, 32);
}

function mouth(g, { mouth: open, smile }) {
    const wide = 33 - open * 7 + smile * 4;
    const corner = 78 - smile * 6;
    const lower = 83 + open * 21;
    path(g, [-wide, corner], [-14, 76 - open * 2, 14, 76 - open * 2, wide, corner], [16, lower + 5, -16, lower + 5, -wide, corner]);
    g.fillStyle = '#7c2c2f';
    g.fill();
    g.save();
    g.clip();
    g.fillStyle = '#fffaf5';
    g.fillRect(-26, 66, 52, 9 + open * 6 + 4);
    g.fillStyle = '#cf6a68';
    g.beginPath();
    g.ellipse(0, lower + 4, 18, 8, 0, 0, Math.PI * 2);
    g.fill();
    g.restore();
    g.fillStyle = '#c65a58';
    path(g, [-wide - 2, corner], [-18, 69, -8, 66, 0, 70], [8, 66, 18, 69, wide + 2, corner], [14, 77 - open * 2, -14, 77 - open * 2, -wide - 2, corner]);
    g.fill();
    path(g, [-wide, corner], [-16, lower + 2, 16, lower + 2, wide, corner], [18, lower + 15, -18, lower + 15, -wide, corner]);
    g.fillStyle = '#d46f69';
    g.fill();
    bothSides(g, () => {
        path(g, [wide + 4, corner - 6], [wide + 8, corner, wide + 3, corner + 6]);
        g.strokeStyle = `rgba(168, 102, 74, ${0.2 + smile * 0.4})`;
        g.lineWidth = 2.2;
        g.stroke();
    });
}

function hairBefore(g) {
    path(g, [-22, -122], [-72, -112, -96, -66, -98, -6], [-100, 50, -108, 96, -116, 140], [-140, 96, -128, 40, -130, -6],
        [-136, -104, -84, -166, 0, -166], [84, -166, 136, -104, 130, -6], [128, 40, 140, 96, 116, 140],
        [108, 96, 100, 50, 98, -6], [94, -62, 62, -104, -22, -122]);
    g.fillStyle = gradient(g, -120, -150, 130, 120, hair.light, hair.middle, hair.dark);
    g.fill();
    g.lineCap = 'round';
    for (const [from, bend, alpha] of [[-96, -118, 0.34], [-84, -112, 0.24], [60, 104, 0.2], [76, 116, 0.16]]) {
        path(g, [from * 0.35, -152], [from, -136, bend, -70, bend + Math.sign(from) * 2, 30]);
        g.strokeStyle = `rgba(176, 124, 92, ${alpha})`;
        g.lineWidth = 5;
        g.stroke();
    }
}

function headset(g) {
    g.lineCap = 'round';
    g.strokeStyle = '#2b3a45';
    g.lineWidth = 9;
    g.beginPath();
    g.arc(0, -30, 138, Math.PI * 1.04, Math.PI * 1.96);
    g.stroke();
    g.strokeStyle = 'rgba(255, 255, 255, .28)';
    g.lineWidth = 2.4;
    g.beginPath();
    g.arc(0, -30, 141, Math.PI * 1.1, Math.PI * 1.7);
    g.stroke();
    bothSides(g, () => {
        g.fillStyle = gradient(g, 112, -40, 148, 30, '#3f5361', '#1f2b34');
        g.beginPath();
        g.roundRect(112, -42, 34, 72, 16);
        g.fill();
    });
    path(g, [-130, 24], [-132, 84, -104, 104, -64, 100]);
    g.strokeStyle = '#2b3a45';
    g.lineWidth = 5;
    g.stroke();
    g.fillStyle = '#1f2b34';
    g.beginPath();
    g.ellipse(-58, 99, 13, 8, -0.1, 0, Math.PI * 2);
    g.fill();
}

/// From back to front, the head turning upon the body.
export function drawFigure(g, now) {
    const withHead = draw => {
        g.save();
        g.translate(now.x, now.y + now.breath * 0.5);
        g.rotate(now.tilt);
        draw();
        g.restore();
    };
    withHead(() => hairBehind(g));
    g.save();
    g.translate(now.x * 0.3, 0);
    jacket(g, now.breath);
    neck(g);
    blouse(g, now.breath);
    badge(g);
    g.restore();
    withHead(() => {
        face(g);
        brows(g, now.brows);
        eyes(g, now);
        nose(g);
        mouth(g, now);
        hairBefore(g);
        headset(g);
    });
}
