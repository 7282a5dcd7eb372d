// The map: dots on a canvas.
const map = (() => {
  const {data, zips, modes, cityText, describe} = report;
  const canvas = document.getElementById('map');
  const here = document.getElementById('here');
  const pen = canvas.getContext('2d');
  const silent = here.textContent;
  let mode = data.modes[0].id;
  let marked = [];
  const kRings = 6;

  const colour = (name) => getComputedStyle(document.documentElement).getPropertyValue(`--${name}`).trim();

  const drawFrames = () => {
    pen.strokeStyle = colour('line');
    pen.lineWidth = 1;
    pen.fillStyle = colour('muted');
    // Letters of a readable size on a small screen too.
    pen.font = `${Math.max(11, 9 * data.width / canvas.clientWidth)}px system-ui, sans-serif`;
    const small = canvas.clientWidth < 600;
    for (const [label, x, y, width, height] of data.insets) {
      pen.strokeRect(x, y, width, height);
      if (!small) pen.fillText(label, x + 6, y + 14);
    }
  };

  const drawDots = () => {
    const {tones, of} = modes.get(mode);
    const size = Math.max(1.7, 1.05 * data.width / canvas.clientWidth);
    tones.forEach((tone, number) => {
      pen.fillStyle = colour(`tone-${tone}`);
      zips.forEach((zip, i) => {
        if (of[i] === number && zip.x !== undefined) pen.fillRect(zip.x - size / 2, zip.y - size / 2, size, size);
      });
    });
  };

  const drawMarks = () => {
    // A few have rings; of many each is a larger dot.
    const few = marked.length <= kRings;
    const pixel = data.width / canvas.clientWidth;
    const radius = few ? Math.max(7, 6 * pixel) : Math.max(2, 1.6 * pixel);
    pen.strokeStyle = pen.fillStyle = colour('ink');
    pen.lineWidth = Math.max(1.5, 1.5 * pixel);
    for (const zip of marked) {
      if (zip.x === undefined) continue;
      pen.beginPath();
      pen.arc(zip.x, zip.y, radius, 0, 2 * Math.PI);
      if (few) pen.stroke();
      else pen.fill();
    }
  };

  const draw = () => {
    const width = canvas.clientWidth;
    if (!width) return;
    const scale = Math.max(2, window.devicePixelRatio) * width / data.width;
    canvas.width = Math.round(data.width * scale);
    canvas.height = Math.round(data.height * scale);
    pen.setTransform(scale, 0, 0, scale, 0, 0);
    drawFrames();
    drawDots();
    drawMarks();
  };

  // ZIP codes by squares of the map, to find the one next to the pointer.
  const kSquare = 20;
  const squares = new Map();
  const square = (x, y) => Math.floor(x / kSquare) * 1000 + Math.floor(y / kSquare);
  for (const zip of zips) {
    if (zip.x === undefined) continue;
    const key = square(zip.x, zip.y);
    if (!squares.has(key)) squares.set(key, []);
    squares.get(key).push(zip);
  }
  const nearest = (x, y) => {
    let best;
    let least = kSquare * kSquare;
    for (let dx = -kSquare; dx <= kSquare; dx += kSquare) {
      for (let dy = -kSquare; dy <= kSquare; dy += kSquare) {
        for (const zip of squares.get(square(x + dx, y + dy)) || []) {
          const far = (zip.x - x) ** 2 + (zip.y - y) ** 2;
          if (far < least) [best, least] = [zip, far];
        }
      }
    }
    return best;
  };
  canvas.addEventListener('pointermove', (event) => {
    const scale = data.width / canvas.clientWidth;
    const zip = nearest(event.offsetX * scale, event.offsetY * scale);
    here.textContent = !zip ? silent
      : `${zip.code} ${zip.names.length ? cityText(zip.names[0]) : data.states[zip.state][1]}: ${describe(zip)}`;
  });
  canvas.addEventListener('pointerleave', () => { here.textContent = silent; });

  for (const input of document.querySelectorAll('input[name=mode]')) {
    input.addEventListener('change', () => {
      mode = input.value;
      for (const legend of document.querySelectorAll('[data-mode]')) legend.hidden = legend.dataset.mode !== mode;
      draw();
    });
  }

  new ResizeObserver(draw).observe(canvas);
  for (const query of ['(prefers-color-scheme: dark)', 'print']) matchMedia(query).addEventListener('change', draw);
  // Paper is light.
  const paper = (on) => {
    document.documentElement.classList.toggle('paper', on);
    draw();
  };
  addEventListener('beforeprint', () => paper(true));
  addEventListener('afterprint', () => paper(false));

  return {mark(found) {
    marked = found;
    draw();
  }};
})();
