// Tables that sort by a column.
(() => {
  const table = document.getElementById('states');
  const body = table.tBodies[0];
  const told = document.getElementById('sorted');
  const headings = [...table.tHead.rows[0].cells];

  const sortBy = (heading) => {
    const column = headings.indexOf(heading);
    const number = heading.classList.contains('n');
    const was = heading.getAttribute('aria-sort');
    // Numbers begin with the largest.
    const down = was ? was === 'ascending' : number;
    const value = (row) => row.cells[column].dataset.value;
    const compare = number ? (a, b) => value(a) - value(b) : (a, b) => value(a).localeCompare(value(b), 'en');
    body.append(...[...body.rows].sort((a, b) => (down ? compare(b, a) : compare(a, b))));
    for (const other of headings) other.removeAttribute('aria-sort');
    heading.setAttribute('aria-sort', down ? 'descending' : 'ascending');
    told.textContent = `Sorted by ${heading.textContent}, ${down ? 'largest first' : number ? 'smallest first' : 'A to Z'}.`;
    if (!number && down) told.textContent = `Sorted by ${heading.textContent}, Z to A.`;
  };

  for (const heading of headings) {
    const button = heading.querySelector('button');
    if (button) button.addEventListener('click', () => sortBy(heading));
  }
})();
