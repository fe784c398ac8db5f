// What is behind and before the representative. Drawn once.

function wall(g, width, height) {
    const light = g.createLinearGradient(0, 0, width, height * 0.9);
    light.addColorStop(0, '#dfe8ea');
    light.addColorStop(0.55, '#c2d2d8');
    light.addColorStop(1, '#8fa9b6');
    g.fillStyle = light;
    g.fillRect(0, 0, width, height);
}

function city(g, x, y, width, height) {
    const sky = g.createLinearGradient(0, y, 0, y + height);
    sky.addColorStop(0, '#9fcbe8');
    sky.addColorStop(0.6, '#dcecf2');
    sky.addColorStop(1, '#f6e7d2');
    g.fillStyle = sky;
    g.fillRect(x, y, width, height);
    const towers = [[0, 250, 62, '#a9c0cd'], [52, 330, 48, '#93afbf'], [92, 215, 70, '#b4c8d2'], [150, 380, 44, '#86a4b6'],
        [186, 280, 60, '#9db7c5']];
    for (const [left, tall, wide, colour] of towers) {
        g.fillStyle = colour;
        g.fillRect(x + left, y + height - tall, wide, tall);
        g.fillStyle = 'rgba(255, 255, 255, .38)';
        for (let row = 14; row < tall - 12; row += 22) {
            for (let column = 8; column < wide - 8; column += 15)
                g.fillRect(x + left + column, y + height - tall + row, 7, 10);
        }
    }
}

function glazing(g) {
    const [x, y, width, height] = [-60, 120, 262, 620];
    g.save();
    g.beginPath();
    g.rect(x, y, width, height);
    g.clip();
    city(g, x, y, width, height);
    g.restore();
    g.fillStyle = '#f7fafa';
    g.fillRect(x, y - 12, width + 12, 12);
    g.fillRect(x + width, y - 12, 12, height + 24);
    g.fillRect(x, y + height, width + 12, 12);
    g.fillRect(x + 150, y, 8, height);
    g.fillRect(x, y + 300, width, 7);
}

function shelf(g) {
    const books = ['#c96f4a', '#33627e', '#e3b65b', '#4c7f74', '#244559', '#d9dfe0', '#8b4f5c'];
    for (const [row, y] of [[0, 300], [1, 470], [2, 640]]) {
        g.fillStyle = 'rgba(40, 66, 82, .18)';
        g.fillRect(420, y + 12, 170, 14);
        g.fillStyle = '#b98a5e';
        g.fillRect(414, y, 176, 14);
        let x = 426;
        for (let index = 0; index < 6; ++index) {
            const tall = 66 + ((index * 29 + row * 17) % 34);
            const wide = 15 + ((index * 7 + row * 5) % 9);
            if (row === 1 && index > 3)
                break;
            g.fillStyle = books[(index + row * 3) % books.length];
            g.fillRect(x, y - tall, wide, tall);
            x += wide + 3;
        }
    }
    plant(g, 548, 470);
}

function plant(g, x, y) {
    for (const [dx, dy, turn, colour] of [[-26, -74, -0.7, '#4f8f6b'], [-8, -92, -0.2, '#3f7c5c'], [14, -88, 0.3, '#5ea57c'],
        [30, -66, 0.8, '#4a8a67']]) {
        g.fillStyle = colour;
        g.beginPath();
        g.ellipse(x + dx, y + dy, 15, 40, turn, 0, Math.PI * 2);
        g.fill();
    }
    g.fillStyle = '#f1ece4';
    g.beginPath();
    g.moveTo(x - 28, y - 46);
    g.lineTo(x + 28, y - 46);
    g.lineTo(x + 20, y);
    g.lineTo(x - 20, y);
    g.fill();
}

function lamp(g) {
    const glow = g.createRadialGradient(440, 96, 10, 440, 96, 260);
    glow.addColorStop(0, 'rgba(255, 241, 208, .95)');
    glow.addColorStop(0.35, 'rgba(255, 236, 196, .38)');
    glow.addColorStop(1, 'rgba(255, 236, 196, 0)');
    g.fillStyle = glow;
    g.fillRect(0, 0, 576, 420);
    g.fillStyle = '#f3d9a2';
    g.beginPath();
    g.moveTo(404, 118);
    g.quadraticCurveTo(440, 40, 476, 118);
    g.fill();
    g.fillStyle = '#5b6a73';
    g.fillRect(438, 0, 4, 70);
}

export function drawRoom(g, width, height) {
    const sharp = document.createElement('canvas');
    sharp.width = width;
    sharp.height = height;
    const s = sharp.getContext('2d');
    wall(s, width, height);
    glazing(s);
    shelf(s);
    lamp(s);
    // Out of focus, as a camera shows what is far behind a face; drawn larger, so that the blur finds no edge.
    g.filter = 'blur(7px)';
    g.drawImage(sharp, -20, -20, width + 40, height + 40);
    g.filter = 'none';
    const depth = g.createLinearGradient(0, 0, 0, height);
    depth.addColorStop(0, 'rgba(20, 40, 54, .05)');
    depth.addColorStop(1, 'rgba(20, 40, 54, .34)');
    g.fillStyle = depth;
    g.fillRect(0, 0, width, height);
}

export function drawDesk(g, width, height) {
    const top = 1046;
    const wood = g.createLinearGradient(0, top, 0, height);
    wood.addColorStop(0, '#c79a6b');
    wood.addColorStop(0.12, '#b58657');
    wood.addColorStop(1, '#7d5836');
    g.fillStyle = wood;
    g.fillRect(0, top, width, height - top);
    g.fillStyle = 'rgba(255, 240, 214, .5)';
    g.fillRect(0, top, width, 3);

    g.filter = 'blur(1.5px)';
    g.fillStyle = 'rgba(40, 24, 12, .32)'; // the shade of what lies on it
    g.beginPath();
    g.ellipse(300, top + 66, 190, 20, 0, 0, Math.PI * 2);
    g.fill();
    g.filter = 'none';

    const lid = g.createLinearGradient(0, top - 96, 0, top + 60);
    lid.addColorStop(0, '#e6ebee');
    lid.addColorStop(1, '#b3bec6');
    g.fillStyle = lid;
    g.beginPath();
    g.roundRect(138, top - 92, 300, 152, 12);
    g.fill();
    g.strokeStyle = 'rgba(255, 255, 255, .85)';
    g.lineWidth = 2;
    g.stroke();
    g.fillStyle = 'rgba(60, 84, 98, .38)';
    g.beginPath();
    g.arc(288, top - 18, 13, 0, Math.PI * 2);
    g.fill();

    g.fillStyle = '#f4efe7';
    g.beginPath();
    g.roundRect(478, top - 38, 58, 74, 8);
    g.fill();
    g.strokeStyle = '#f4efe7';
    g.lineWidth = 9;
    g.beginPath();
    g.arc(540, top - 4, 17, -1.2, 1.4);
    g.stroke();
    g.fillStyle = '#2f6f8f';
    g.fillRect(478, top - 12, 58, 12);
}
